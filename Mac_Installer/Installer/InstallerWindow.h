// The installer's window: the steps at the left, the current page, and the buttons that go from one to the
// next.
//
// A page decides whether it may be left (shouldExitPane) and when the buttons may be pressed (setNextEnabled,
// setPreviousEnabled). The window may be closed at any moment; it is gone at once, whatever a page is doing.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

#include <QDialog>

#include <vector>

class QKeyEvent;
class QLabel;
class QPushButton;
class QStackedWidget;
class PressGuard;
class StepList;

class InstallerWindow : public QDialog {
    Q_OBJECT

  public:
    /// `pages` are the steps in their order, at least one; the window shows the first and enters it. It takes
    /// over the pages: they are destroyed with it. Main thread, like everything here.
    explicit InstallerWindow(const std::vector<InstallerPane*>& pages, QWidget* parent = nullptr);
    InstallerWindow(const InstallerWindow&) = delete;
    InstallerWindow& operator=(const InstallerWindow&) = delete;
    ~InstallerWindow() override;

    /// Takes a comfortable size, but none larger than the screen.
    void resizeToScreen();

  protected:
    /// Return presses the button that goes on, as in every dialog; Escape does not end an installation.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addStep(InstallerPane* page);
    void connectButton(QPushButton* button, void (InstallerWindow::*action)());
    void goForward();
    void goBack();
    void enter(int step, InstallerDirection direction);
    void updateButtons();
    [[nodiscard]] bool isLast() const;
    [[nodiscard]] InstallerPane* currentPage() const;
    void focusFirstControl();

    std::vector<InstallerPane*> pages_;  // children
    int current_ = 0;
    bool leaving_ = false;  // a page is deciding; its alert may run an event loop of its own
    PressGuard* presses_;
    StepList* steps_;
    QLabel* heading_;
    QStackedWidget* stack_;
    QPushButton* back_;
    QPushButton* next_;
};

// The installer's window: list of steps, current page and navigation buttons.
//
// A page decides whether it may be left (shouldExitPane) and when the buttons are enabled (setNextEnabled,
// setPreviousEnabled). The window can be closed at any time; it disappears at once, even if a page is busy.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

#include <QDialog>

#include <iterator>
#include <memory>
#include <vector>

class QLabel;
class QPushButton;
class QStackedWidget;
class PressGuard;
class StepList;

class InstallerWindow : public QDialog {
    Q_OBJECT

  public:
    /// Enters the first of `pages`, which are in step order and not empty. Takes ownership: the pages are
    /// destroyed with the window. The initial size fits all pages, unless the screen is smaller. Main thread,
    /// like all members.
    explicit InstallerWindow(const std::vector<InstallerPane*>& pages, QWidget* parent = nullptr);
    ~InstallerWindow() override;

  protected:
    /// Return presses the focused button, or else Continue; Escape does not close the installer.
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void takeClick(const QPushButton* button, InstallerDirection direction);
    void enter(int step, InstallerDirection direction);
    void updateButtons();
    void scrollTo(const QWidget* before, QWidget* control);
    [[nodiscard]] bool isLast() const { return current_ + 1 == std::ssize(pages_); }
    [[nodiscard]] InstallerPane& currentPage() const { return *pages_[static_cast<std::size_t>(current_)]; }
    void focusFirstControl();

    std::vector<std::unique_ptr<InstallerPane>> pages_;  // destroyed before the widgets, which they refer to
    int current_ = 0;
    bool leaving_ = false;  // a page is deciding; its alert may run a nested event loop
    PressGuard* presses_;
    StepList* steps_;
    QLabel* heading_;
    QStackedWidget* stack_;
    QPushButton* back_;
    QPushButton* next_;
};

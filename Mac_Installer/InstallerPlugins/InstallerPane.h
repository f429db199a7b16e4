// The contract for the pages of the installer: what a page is, and when the installer calls it.
//
// Order of calls, all on the main thread: awakeFromNib() once, by the page's own factory, as soon as its
// controls exist and are connected; then at each showing title() and didEnterPane(); the person's clicks and
// keys; and shouldExitPane() when the person presses Continue or Go Back. The installer may destroy the page
// at any moment between two calls, whatever the page is doing on threads of its own; never during a call, nor
// from a signal of the page.

#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

#ifdef INSTALLERPLUGINS_LIBRARY
#define INSTALLERPLUGINS_EXPORT Q_DECL_EXPORT
#else
#define INSTALLERPLUGINS_EXPORT Q_DECL_IMPORT
#endif

/// Which way the person moves. Every value but InstallerDirectionForward means back.
enum InstallerDirection : int {
    InstallerDirectionForward = 0,
    InstallerDirectionBackward = 1,
};

/// A page. It owns its content widget: the installer shows the widget among its own, and whichever of the two
/// goes first, the widget goes with it.
class INSTALLERPLUGINS_EXPORT InstallerPane : public QObject {
    Q_OBJECT

  public:
    /// The first page makes the application's buttons act immediately (ButtonActions.h).
    explicit InstallerPane(QObject* parent = nullptr);
    InstallerPane(const InstallerPane&) = delete;
    InstallerPane& operator=(const InstallerPane&) = delete;
    ~InstallerPane() override;

    /// The page's name in the list of steps and above the page, in the person's language. May be asked at any
    /// time.
    [[nodiscard]] virtual QString title() const = 0;

    /// The controls exist and are connected. Does nothing here; an override calls it first.
    virtual void awakeFromNib();

    /// The page is on the screen. Does nothing here.
    virtual void didEnterPane(InstallerDirection direction);

    /// The person wants to leave. True lets them; a page that answers false has told them why, and stays. The
    /// call may last as long as a modal alert stands. Answers true here.
    [[nodiscard]] virtual bool shouldExitPane(InstallerDirection direction);

    /// Switches the installer's buttons while this page is shown. Takes effect at once, and holds for this
    /// page until changed. Both are on at first.
    void setNextEnabled(bool enabled);
    void setPreviousEnabled(bool enabled);
    [[nodiscard]] bool isNextEnabled() const { return nextEnabled_; }
    [[nodiscard]] bool isPreviousEnabled() const { return previousEnabled_; }

    /// What the installer shows; null before the page has made it, and once it is gone.
    [[nodiscard]] QWidget* contentWidget() const { return contentWidget_; }

  signals:
    void nextEnabledChanged(bool enabled);
    void previousEnabledChanged(bool enabled);

  protected:
    /// Called once, by the page itself. `widget` has no parent yet.
    void setContentWidget(QWidget* widget);

  private:
    QPointer<QWidget> contentWidget_;
    bool nextEnabled_ = true;
    bool previousEnabled_ = true;
};

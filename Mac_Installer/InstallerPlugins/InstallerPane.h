// The contract for installer pages: what a page provides, and when the installer calls it.
//
// Order of calls, all on the main thread: awakeFromNib() once, by the plug-in's factory, when the controls
// exist; title() and didEnterPane() each time the page is shown; then user input; and shouldExitPane() when
// the user presses Continue or Go Back. The installer may destroy the page between any two calls, even while
// the page's own threads are busy, but never during a call or from a signal of the page.

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

/// Direction of navigation. Any value other than InstallerDirectionForward means backward.
enum InstallerDirection : int {
    InstallerDirectionForward = 0,
    InstallerDirectionBackward = 1,
};

/// A page. Its content widget is owned by both the page and, once shown, the installer's window: it is
/// destroyed with the first of the two.
class INSTALLERPLUGINS_EXPORT InstallerPane : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;
    ~InstallerPane() override;

    /// The page's name in the list of steps and above the page, in the user's language. May be called at any
    /// time.
    [[nodiscard]] virtual QString title() const = 0;

    /// Called when the controls exist. Does nothing; overrides must call it first.
    virtual void awakeFromNib() {}

    /// Called when the page has become the current one. Does nothing by default.
    virtual void didEnterPane(InstallerDirection /*direction*/) {}

    /// Whether the user may leave the page. Before returning false, tell the user why. May block while a
    /// modal alert is open. Returns true by default.
    [[nodiscard]] virtual bool shouldExitPane(InstallerDirection /*direction*/) { return true; }

    /// Whether the user chose something here that the hand-off file must hold once the page is left forwards.
    /// False by default.
    [[nodiscard]] virtual bool hasChoice() const { return false; }

    /// Enable or disable the installer's buttons for this page, effective immediately while it is shown. Both
    /// are enabled initially.
    void setNextEnabled(bool enabled);
    void setPreviousEnabled(bool enabled);
    [[nodiscard]] bool isNextEnabled() const { return nextEnabled_; }
    [[nodiscard]] bool isPreviousEnabled() const { return previousEnabled_; }

    /// The widget that the installer shows; null before it is created and after it is destroyed.
    [[nodiscard]] QWidget* contentWidget() const { return contentWidget_; }

  signals:
    /// The page has enabled or disabled one of the installer's buttons.
    void buttonsChanged();

  protected:
    /// Called once, by the page itself. `widget` must have no parent yet.
    void setContentWidget(QWidget* widget) { contentWidget_ = widget; }

  private:
    QPointer<QWidget> contentWidget_;
    bool nextEnabled_ = true;
    bool previousEnabled_ = true;
};

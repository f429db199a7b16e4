// An indeterminate progress bar.

#pragma once

#include <QPointer>
#include <QProgressBar>

class ProgressIndicator : public QProgressBar {
    Q_OBJECT

  public:
    explicit ProgressIndicator(QWidget* parent = nullptr);

    /// The animation uses main-thread timers, so it stops while the main thread is blocked.
    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimating() const;

    /// A label that is shown and hidden together with the bar.
    void setCaption(QWidget* caption);

    void setVisible(bool visible) override;

  private:
    QPointer<QWidget> caption_;
};

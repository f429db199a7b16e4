// A bar that shows that something goes on, without saying how far it has come.

#pragma once

#include <QPointer>
#include <QProgressBar>

class ProgressIndicator : public QProgressBar {
    Q_OBJECT

  public:
    explicit ProgressIndicator(QWidget* parent = nullptr);

    /// The animation is driven by the main thread's timers, which stay free as long as the work is done
    /// elsewhere.
    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimating() const;

    /// A text beside the bar that is shown and hidden together with it.
    void setCaption(QWidget* caption);

    void setVisible(bool visible) override;

  private:
    QPointer<QWidget> caption_;
};

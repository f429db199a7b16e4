// An indeterminate progress bar.

#pragma once

#include <QProgressBar>

class ProgressIndicator : public QProgressBar {
  public:
    explicit ProgressIndicator(QWidget* parent = nullptr) : QProgressBar(parent) {
        setTextVisible(false);
        stopAnimation();
    }

    /// The animation uses main-thread timers, so it stops while the main thread is blocked.
    void startAnimation() { setRange(0, 0); }
    void stopAnimation() { setRange(0, 1); }
    [[nodiscard]] bool isAnimating() const { return maximum() == 0; }
};

#include "NetworkPrinterConfig/controls/ProgressIndicator.h"

ProgressIndicator::ProgressIndicator(QWidget* parent) : QProgressBar(parent) {
    setTextVisible(false);
    stopAnimation();
}

void ProgressIndicator::startAnimation() {
    setRange(0, 0);  // An empty range makes the bar indeterminate.
}

void ProgressIndicator::stopAnimation() {
    setRange(0, 1);
    reset();
}

bool ProgressIndicator::isAnimating() const {
    return minimum() == maximum();
}

void ProgressIndicator::setCaption(QWidget* caption) {
    caption_ = caption;
}

void ProgressIndicator::setVisible(bool visible) {
    QProgressBar::setVisible(visible);
    if (caption_) {
        caption_->setVisible(visible);
    }
}

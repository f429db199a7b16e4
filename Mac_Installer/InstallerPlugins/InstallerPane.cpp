#include "InstallerPlugins/InstallerPane.h"

InstallerPane::~InstallerPane() {
    delete contentWidget_;
}

void InstallerPane::setNextEnabled(bool enabled) {
    nextEnabled_ = enabled;
    emit buttonsChanged();
}

void InstallerPane::setPreviousEnabled(bool enabled) {
    previousEnabled_ = enabled;
    emit buttonsChanged();
}

#include "InstallerPlugins/InstallerPane.h"

#include "InstallerPlugins/ButtonActions.h"

InstallerPane::InstallerPane(QObject* parent) : QObject(parent) {
    makeButtonsImmediate();
}

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

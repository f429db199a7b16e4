#include "InstallerPlugins/InstallerPane.h"

#include "InstallerPlugins/ButtonActions.h"

InstallerPane::InstallerPane(QObject* parent) : QObject(parent) {
    makeButtonsImmediate();
}

InstallerPane::~InstallerPane() {
    delete contentWidget_;
}

void InstallerPane::awakeFromNib() {}

void InstallerPane::didEnterPane(InstallerDirection /*direction*/) {}

bool InstallerPane::shouldExitPane(InstallerDirection /*direction*/) {
    return true;
}

void InstallerPane::setNextEnabled(bool enabled) {
    nextEnabled_ = enabled;
    emit nextEnabledChanged(enabled);
}

void InstallerPane::setPreviousEnabled(bool enabled) {
    previousEnabled_ = enabled;
    emit previousEnabledChanged(enabled);
}

void InstallerPane::setContentWidget(QWidget* widget) {
    contentWidget_ = widget;
}

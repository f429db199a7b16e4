#include "platform/UserDefaults.h"

#include <QSettings>

void setUserDefault(const QString& key, bool value) {
    QSettings settings;
    // A write goes through to the disk, which took longer than anything else of the page's making.
    if (!settings.contains(key) || settings.value(key).toBool() != value) {
        settings.setValue(key, value);
    }
}

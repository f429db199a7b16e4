#include "platform/UserDefaults.h"

#include <QSettings>

void setUserDefault(const QString& key, bool value) {
    QSettings settings;
    // Write only changes: writing to disk took longer than any other part of creating the page.
    if (!settings.contains(key) || settings.value(key).toBool() != value) {
        settings.setValue(key, value);
    }
}

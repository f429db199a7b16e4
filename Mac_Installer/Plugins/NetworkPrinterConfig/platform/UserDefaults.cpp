#include "platform/UserDefaults.h"

#include <QSettings>

void setUserDefault(const QString& key, bool value) {
    QSettings().setValue(key, value);
}

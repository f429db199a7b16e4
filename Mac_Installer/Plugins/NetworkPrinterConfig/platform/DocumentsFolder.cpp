#include "platform/DocumentsFolder.h"

#include <QStandardPaths>

QString documentsDirectory() {
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0);
}

#include "platform/DocumentsFolder.h"

#include <QStandardPaths>
#include <QStringList>

QString documentsDirectory() {
    const QStringList directories = QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation);
    return directories.isEmpty() ? QString() : directories.first();
}

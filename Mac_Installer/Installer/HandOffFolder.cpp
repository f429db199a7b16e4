#include "Installer/HandOffFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString documentsFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

}  // namespace

QString prepareHandOffFolder() {
    const QString folder = documentsFolder();
    if (!folder.isEmpty() && QDir().mkpath(folder) && QFileInfo(folder).isWritable()) {
        return {};
    }
    return QCoreApplication::translate(
               "HandOffFolder",
               "The folder %1 can't be written to. The choices made here would not reach the "
               "later steps of the installation. Make the folder writable, then start again.")
        .arg(folder);
}

QString handOffFile() {
    return documentsFolder() + QStringLiteral("/KV.txt");
}

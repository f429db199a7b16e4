#include "Installer/HandOff.h"

#include "InstallerPlugins/InstallerPane.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

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
               "HandOff", "The folder %1 can't be written to. Make it writable, then start again.")
        .arg(folder);
}

QString handOffFile() {
    return documentsFolder() + QStringLiteral("/KV.txt");
}

HandOff::HandOff(std::vector<InstallerPane*> pages, QString folderProblem)
    : pages_(std::move(pages)), folderProblem_(std::move(folderProblem)) {}

bool HandOff::isChosen() const {
    return std::any_of(pages_.begin(), pages_.end(),
                       [](const InstallerPane* page) { return page->hasChoice(); });
}

QString HandOff::problem() const {
    const QFileInfo file(handOffFile());
    const bool isUpToDate =
        isChosen() ? file.isFile() && file.isWritable() && file.size() > 0 : !file.exists();
    if (!folderProblem_.isNull() || isUpToDate) {
        return folderProblem_;
    }
    return QCoreApplication::translate("HandOff",
                                       "The file %1 couldn't be updated. Check that it and its folder are "
                                       "writable and the disk is not full; then go back and choose the "
                                       "printer again.")
        .arg(file.filePath());
}

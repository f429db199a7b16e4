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
               "HandOff",
               "The folder %1 can't be written to. The choices made here would not reach the "
               "later steps of the installation. Make the folder writable, then start again.")
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
    if (!folderProblem_.isNull() || QFileInfo(handOffFile()).size() > 0) {
        return folderProblem_;
    }
    return QCoreApplication::translate(
               "HandOff",
               "The file %1 couldn't be written. Check that its folder is writable and not "
               "full, then go back and choose the printer again.")
        .arg(handOffFile());
}

#include "Installer/InstallerRun.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

QString findHomeFolder() {
    if (!qEnvironmentVariableIsEmpty("HOME")) {
        return {};
    }
    const passwd* const user = ::getpwuid(::getuid());
    if (user != nullptr && user->pw_dir[0] != '\0') {
        qputenv("HOME", user->pw_dir);
        return {};
    }
    return QCoreApplication::translate("InstallerRun",
                                       "no home folder: HOME is not set, and user %1 has no passwd entry")
        .arg(::getuid());
}

InstallerRun::InstallerRun()
    : lock_(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
            QStringLiteral("/.QzInstall.lock")),
      temporary_(QDir::tempPath() + QStringLiteral("/quazel-installer-XXXXXX")) {
    if (temporary_.isValid()) {
        qputenv("TMPDIR", QFile::encodeName(temporary_.path()));
    }
    lock_.setStaleLockTime(0);  // However long the user takes.
}

QString InstallerRun::takeLock() {
    qint64 process = 0;
    QString host;
    QString program;
    if (lock_.tryLock() || lock_.error() != QLockFile::LockFailedError ||
        !lock_.getLockInfo(&process, &host, &program)) {
        return {};
    }
    return QCoreApplication::translate("InstallerRun",
                                       "%1 is already running (process %2 on %3) and uses %4; close it first")
        .arg(program, QString::number(process), host, QFileInfo(lock_.fileName()).path());
}

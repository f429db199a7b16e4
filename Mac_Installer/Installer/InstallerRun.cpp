#include "Installer/InstallerRun.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

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
    } else {
        qWarning("no temporary folder: %s", qPrintable(temporary_.errorString()));
    }
    lock_.setStaleLockTime(0);  // However long the user takes.
}

QString InstallerRun::takeLock() {
    if (lock_.tryLock(100) || lock_.error() != QLockFile::LockFailedError) {
        return {};
    }
    qint64 process = 0;
    QString host;
    QString program;
    QString holder = QCoreApplication::translate("InstallerRun", "Another installer");
    if (lock_.getLockInfo(&process, &host, &program)) {
        // QLockFile can't replace a lock that it may not write, such as one that root has left.
        const bool isHere = host == QSysInfo::machineHostName();
        if (isHere && ::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH) {
            return {};
        }
        holder = QCoreApplication::translate("InstallerRun", "%1 (process %2 on %3)")
                     .arg(program, QString::number(process), host);
    }
    return QCoreApplication::translate(
               "InstallerRun", "%1 is already running; close it first, or remove %2 if it has crashed")
        .arg(holder, lock_.fileName());
}

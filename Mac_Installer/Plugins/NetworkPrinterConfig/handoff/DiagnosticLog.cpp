#include "handoff/DiagnosticLog.h"

#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace {

/// Without a documents folder this is "(null)/QzInstall.log", relative to the working directory.
QString logFilePath() {
    return stringWithFormat(u"%@/QzInstall.log", {documentsDirectory()});
}

}  // namespace

QString GetDocumentPath() {
    QString path = logFilePath();
    const FileError error = removeItemAtPath(path);
    if (error.code != FileError::none && error.code != FileError::noSuchFile) {
        // The prefix is what support staff look for, although it names the one error that is not reported.
        systemLog(u"NSFileNoSuchFileError %@", {error.description});
    }
    return path;
}

// NOLINTNEXTLINE(cert-dcl50-cpp): the records' formats are printf's, and the compiler checks them.
void tDebugPrint(const char* format, ...) {
    static const QByteArray InstallerlogFilePath = [] {
        QByteArray path = QFile::encodeName(GetDocumentPath());
        ::unlink(path.constData());
        return path;
    }();

    struct Closer {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    const std::unique_ptr<std::FILE, Closer> log(std::fopen(InstallerlogFilePath.constData(), "ab+"));
    if (!log) {
        return;
    }
    std::fputs(QUAZEL_BUILD_DATE, log.get());
    std::fputs("\t", log.get());
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(log.get(), format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(arguments);
}

void keepEarlierLog() {
    const QFileInfo log(logFilePath());
    if (!log.isFile()) {
        return;
    }
    const QString time = log.lastModified().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    QFile::rename(log.filePath(), log.dir().filePath(QStringLiteral("QzInstall-%1.log").arg(time)));
}

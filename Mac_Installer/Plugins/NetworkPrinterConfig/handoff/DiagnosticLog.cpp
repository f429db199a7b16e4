#include "handoff/DiagnosticLog.h"

#include "BuildDate.h"
#include "platform/Descriptor.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

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
        // Support staff search for this prefix, although it names the one error that is not reported.
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

    // The system calls of a stream in mode "ab+", without the stream, which took longer to set up and free
    // than the write and split records longer than its buffer.
    const Descriptor log(::open(InstallerlogFilePath.constData(), O_RDWR | O_CREAT | O_APPEND, 0666));
    if (log.descriptor() < 0) {
        return;
    }
    char* message = nullptr;
    va_list arguments;
    va_start(arguments, format);
    const int length = ::vasprintf(&message, format, arguments);
    va_end(arguments);
    if (length < 0) {
        return;
    }
    char start[] = QUAZEL_BUILD_DATE "\t";
    const std::array<iovec, 2> record{
        {{start, sizeof(start) - 1}, {message, static_cast<std::size_t>(length)}}};
    // A record that can't be written is dropped.
    [[maybe_unused]] const ssize_t written = ::writev(log.descriptor(), record.data(), record.size());
    std::free(message);
}

void keepEarlierLog() {
    const QFileInfo log(logFilePath());
    if (!log.isFile()) {
        return;
    }
    const QString time = log.lastModified().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    const QString start = log.dir().filePath(QStringLiteral("QzInstall-") + time);
    QString kept = start + QStringLiteral(".log");
    // The name exists if another log of the same second was kept.
    for (int number = 2; !QFile::rename(log.filePath(), kept) && QFileInfo::exists(kept); ++number) {
        kept = start + QStringLiteral("-%1.log").arg(number);
    }
}

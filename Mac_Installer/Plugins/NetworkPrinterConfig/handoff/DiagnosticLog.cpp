#include "handoff/DiagnosticLog.h"

#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QByteArray>
#include <QFile>

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

QString GetDocumentPath() {
    // Without a documents folder this is "(null)/QzInstall.log", relative to the working directory.
    QString path = stringWithFormat(u"%@/QzInstall.log", {documentsDirectory()});
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
    std::vfprintf(log.get(), format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized): it is
    va_end(arguments);
}

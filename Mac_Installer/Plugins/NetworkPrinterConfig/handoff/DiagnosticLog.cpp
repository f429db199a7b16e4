#include "handoff/DiagnosticLog.h"

#include "BuildDate.h"
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
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <span>
#include <string_view>
#include <vector>

namespace {

/// Without a documents folder this is "(null)/QzInstall.log", relative to the working directory.
QString logFilePath() {
    return stringWithFormat(u"%@/QzInstall.log", {documentsDirectory()});
}

constexpr std::string_view recordStart = QUAZEL_BUILD_DATE "\t";

/// The log file, open for one record. Makes the same system calls as a stream in mode "ab+", but without the
/// stream, which took longer to set up and free than the write and split records longer than its buffer.
class LogFile {
  public:
    explicit LogFile(const char* path) : descriptor_(::open(path, O_RDWR | O_CREAT | O_APPEND, 0666)) {}
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

    /// A record that can't be written is dropped.
    void append(std::string_view record) const {
        [[maybe_unused]] const ssize_t written = ::write(descriptor_, record.data(), record.size());
    }

  private:
    int descriptor_;
};

/// Formats the record into `buffer`, truncated to fit. Returns the length of the whole record.
[[gnu::format(printf, 2, 0)]] std::size_t formatRecord(std::span<char> buffer, const char* format,
                                                       va_list arguments) {
    const std::size_t start = recordStart.copy(buffer.data(), buffer.size());
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): every caller has started it.
    const int length = std::vsnprintf(buffer.data() + start, buffer.size() - start, format, arguments);
    return start + static_cast<std::size_t>(std::max(length, 0));
}

/// The stack buffer holds all but the longest records.
[[gnu::format(printf, 2, 0)]] void appendRecord(const LogFile& log, const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::array<char, 1024> buffer;
    const std::size_t length = formatRecord(buffer, format, arguments);
    if (length < buffer.size()) {
        log.append({buffer.data(), length});
    } else {
        std::vector<char> largerBuffer(length + 1);
        formatRecord(largerBuffer, format, again);
        log.append({largerBuffer.data(), length});
    }
    va_end(again);
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

    const LogFile log(InstallerlogFilePath.constData());
    if (!log.isOpen()) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    appendRecord(log, format, arguments);
    va_end(arguments);
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

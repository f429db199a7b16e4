#include "platform/FileManager.h"

#include "platform/StringFormat.h"

#include <QFile>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace {

int codeOf(const std::error_code& error) {
    switch (error.value()) {
        case ENOENT:
        case ENOTDIR:
            return FileError::noSuchFile;
        case EACCES:
        case EPERM:
            return 513;  // no permission
        case EROFS:
            return 642;  // read-only volume
        default:
            return 512;  // unknown
    }
}

}  // namespace

FileError removeItemAtPath(const QString& path) {
    std::error_code error;
    // The count, unlike a check beforehand, also covers an item that another process removes first.
    if (std::filesystem::remove_all(QFile::encodeName(path).toStdString(), error) == 0) {
        error = std::make_error_code(std::errc::no_such_file_or_directory);
    }
    if (!error) {
        return {};
    }
    const int code = codeOf(error);
    const QString reason = QString::fromLocal8Bit(error.message().c_str());
    return {code, stringWithFormat(u"Error Code=%@ \"%@\" %@", {code, reason, path})};
}

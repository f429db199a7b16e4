#include "platform/FileManager.h"

#include "platform/StringFormat.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

int codeOf(const std::error_code& error) {
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) {
        return FileError::noSuchFile;
    }
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted) {
        return FileError::noPermission;
    }
    if (error == std::errc::read_only_file_system) {
        return FileError::readOnlyVolume;
    }
    return FileError::unknown;
}

}  // namespace

FileError removeItemAtPath(const QString& path) {
    const std::filesystem::path item(QFile::encodeName(path).toStdString());
    std::error_code error;
    // remove_all() doesn't fail if the path does not exist, but callers must be able to tell. Unlike a check
    // beforehand, its count also covers an item that another process removes first.
    if (std::filesystem::remove_all(item, error) == 0) {
        error = std::make_error_code(std::errc::no_such_file_or_directory);
    }
    if (!error) {
        return {};
    }
    const int code = codeOf(error);
    const QString reason = QString::fromLocal8Bit(error.message().c_str());
    return {code, stringWithFormat(u"Error Code=%@ \"%@\" %@", {code, reason, path})};
}

bool fileExistsAtPath(const QString& path) {
    return QFileInfo::exists(path);
}

QString stringWithContentsOfFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return {};
    }
    QStringDecoder decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    const QString text = decoder(bytes);
    if (decoder.hasError()) {
        return {};
    }
    return text.isNull() ? QStringLiteral("") : text;
}

bool writeAsciiToFile(const QString& text, const QString& path) {
    const bool isAscii =
        std::all_of(text.cbegin(), text.cend(), [](QChar character) { return character.unicode() < 0x80; });
    if (text.isNull() || !isAscii) {
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        return false;
    }
    const QByteArray bytes = text.toLatin1();
    return file.write(bytes) == bytes.size();
}

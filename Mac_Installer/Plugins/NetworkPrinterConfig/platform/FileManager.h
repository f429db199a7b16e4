// File operations that report what went wrong as an error with a code, in the way the page's logs name it.

#pragma once

#include <QString>

/// Why a file operation failed. Code 0 means that it did not.
struct FileError {
    static constexpr int none = 0;
    static constexpr int noSuchFile = 4;
    static constexpr int unknown = 512;
    static constexpr int noPermission = 513;
    static constexpr int readOnlyVolume = 642;

    int code = none;
    QString description;  ///< Null when there is no error, so that it is logged as "(null)".
};

/// Removes whatever is at `path`: a file, a symbolic link (never its target), or a folder with its contents.
/// Any thread.
[[nodiscard]] FileError removeItemAtPath(const QString& path);

/// Whether something is at `path`, a symbolic link being followed. Any thread.
[[nodiscard]] bool fileExistsAtPath(const QString& path);

/// The whole file as UTF-8, or a null string when it can't be read or is not valid UTF-8. An empty file gives
/// an empty string that is not null. Any thread.
[[nodiscard]] QString stringWithContentsOfFile(const QString& path);

/// Replaces the content of the file at `path`, in place, with `text` as ASCII. Returns false, with the file
/// left as it was, when `text` is null or not ASCII; also false when the file can't be opened or written. Any
/// thread.
bool writeAsciiToFile(const QString& text, const QString& path);

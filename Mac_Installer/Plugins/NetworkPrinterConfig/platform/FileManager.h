// File operations whose errors have the codes and the form that the page's logs use.

#pragma once

#include <QString>

/// The reason why a file operation failed; code 0 means success.
struct FileError {
    static constexpr int none = 0;
    static constexpr int noSuchFile = 4;
    static constexpr int unknown = 512;
    static constexpr int noPermission = 513;
    static constexpr int readOnlyVolume = 642;

    int code = none;
    QString description;  ///< Null if there is no error, so that it is logged as "(null)".
};

/// Removes a file, a symbolic link (not its target) or a folder with its contents. Any thread.
[[nodiscard]] FileError removeItemAtPath(const QString& path);

/// Whether `path` exists, following symbolic links. Any thread.
[[nodiscard]] bool fileExistsAtPath(const QString& path);

/// The whole file as UTF-8, or null if it can't be read or is not valid UTF-8. Empty, but not null, for an
/// empty file. Any thread.
[[nodiscard]] QString stringWithContentsOfFile(const QString& path);

/// Overwrites the file at `path` in place with `text` as ASCII. Returns false if `text` is null or not ASCII
/// (the file is then unchanged), or if the file can't be opened or written. Any thread.
bool writeAsciiToFile(const QString& text, const QString& path);

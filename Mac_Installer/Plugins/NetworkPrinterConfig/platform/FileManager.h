// Removes files and reports errors with the codes and texts that the page's logs use.

#pragma once

#include <QString>

/// The reason why a file operation failed.
struct FileError {
    static constexpr int none = 0;
    static constexpr int noSuchFile = 4;

    int code = none;
    QString description;  ///< Null if there is no error, so that it is logged as "(null)".
};

/// Removes a file, a symbolic link (not its target) or a folder with its contents. Any thread.
[[nodiscard]] FileError removeItemAtPath(const QString& path);

// The hand-off to the later installation steps: KV.txt in the user's documents folder, one ASCII line without
// a newline, such as "KV260 192.168.1.40": model name, one space, address as entered by the user.
//
// All functions run on the main thread. A failed write is not reported.

#pragma once

#include <QString>

/// Overwrites the file in place with `line`. If `line` is null or not ASCII, the file is left unchanged.
void writeToTextFile(const QString& line);

/// Path of the file; relative without a documents folder.
[[nodiscard]] QString selectionFilePath();

/// Removes the file. Every outcome except a missing file is logged to the system log; success as "(null)".
void RemoveFile();

/// The file at `path` as UTF-8 text: empty if the file doesn't exist, null if it can't be read or is not
/// UTF-8.
[[nodiscard]] QString GetFileData(const QString& path);

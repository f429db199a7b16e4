// The hand-off to the later steps of the installation: KV.txt in the user's documents folder, one ASCII line
// without a line end, such as "KV260 192.168.1.40": model name, one blank, address as the user gave it.
//
// All three functions run on the main thread and report nothing to their caller; what went wrong is in the
// logs.

#pragma once

#include <QString>

/// Replaces the file's content with `line`, in place. A line that is null or not ASCII leaves the file as it
/// was.
void writeToTextFile(const QString& line);

/// Removes the file. Any outcome but its absence leaves a line in the system log; a success leaves "(null)".
void RemoveFile();

/// The whole text of the file at `path` as UTF-8: the empty string when nothing is there, null when it can't
/// be read or is not UTF-8.
[[nodiscard]] QString GetFileData(const QString& path);

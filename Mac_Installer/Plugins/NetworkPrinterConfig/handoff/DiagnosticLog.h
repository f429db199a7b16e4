// The diagnostic log: QzInstall.log in the user's documents folder, created anew by each process and kept
// after it ends. A record is the build date, a tab and the message, which contains its own newline. There is
// no time, thread or severity.
//
// The file is opened and closed for every record, so nothing is lost if the installer crashes.

#pragma once

#include <QString>

/// Appends one record, formatted like printf. The first call in a process, which the installer makes before
/// starting other threads, removes the previous log. A record that can't be written is silently dropped.
/// String arguments are NUL-terminated UTF-8 and not null (see UTF8String and textOrNull). Any thread.
void tDebugPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The full path of the log file. Also removes any existing file there, so only tDebugPrint may call it.
[[nodiscard]] QString GetDocumentPath();

/// Renames an earlier process's log to QzInstall-DATE-TIME.log, where DATE and TIME are those of its last
/// record in local time; if that name exists, "-2", "-3" and so on is appended. For programs whose own log
/// must not replace the installer's. Call it before the first tDebugPrint. No effect if there is no log; one
/// that can't be renamed stays, and the first tDebugPrint removes it.
void keepEarlierLog();

// The diagnostic log: QzInstall.log in the user's documents folder, begun afresh by each process and kept on
// disk. A record is the build date, a tab and the message; the messages bring their own line end. There is no
// time, thread or severity in it.
//
// The file is opened and closed around every record, so that whatever was logged is on disk even if the
// installer dies right afterwards.

#pragma once

#include <QString>

/// Appends one record, its message formatted as printf does. The first call in a process removes the log of
/// an earlier one; it is made on the main thread before others exist, but may be made on any. A record that
/// can't be written is dropped without a word. Text arguments are NUL-terminated UTF-8 and not null (see
/// UTF8String and textOrNull).
void tDebugPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The full path of the log file. Removes any existing file there before it returns, so it is for tDebugPrint
/// alone.
[[nodiscard]] QString GetDocumentPath();

/// Moves the log of an earlier process aside, to QzInstall-DATE-TIME.log beside it, where DATE and TIME are
/// those of its last record in local time; where that name is taken, "-2", "-3" and so on are put behind it.
/// For programs whose own log must not replace the installer's. Called before the first tDebugPrint; does
/// nothing when there is no log. One that can't be moved stays, and the first tDebugPrint removes it.
void keepEarlierLog();

// The one question the page asks about folders: where the current user's documents lie.

#pragma once

#include <QString>

/// The current user's first documents folder as the XDG user directories name it, or a null string when there
/// is none. The folder need not exist. Asked anew at every call. Any thread.
[[nodiscard]] QString documentsDirectory();

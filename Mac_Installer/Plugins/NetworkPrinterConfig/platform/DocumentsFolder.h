#pragma once

#include <QString>

/// The current user's first documents folder according to the XDG user directories, or null if there is none.
/// The folder need not exist. Looked up on every call. Any thread.
[[nodiscard]] QString documentsDirectory();

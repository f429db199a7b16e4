// The current user's documents folder according to the XDG user directories.

#pragma once

#include <QString>

/// The first such folder, which need not exist, or null if there is none. Looked up on every call. Any
/// thread.
[[nodiscard]] QString documentsDirectory();

// The user's documents folder, where pages write the hand-off file and the summary reads it.

#pragma once

#include <QString>

/// Creates the folder if it is missing. Returns null if the folder is writable, otherwise a message for the
/// user that says what is wrong.
[[nodiscard]] QString prepareHandOffFolder();

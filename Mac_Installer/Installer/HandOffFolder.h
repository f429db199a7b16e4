// The user's documents folder, where pages write the hand-off file and the steps of the installation read it.

#pragma once

#include <QString>

/// Creates the folder if it is missing. Returns null if the folder is writable, otherwise a message for the
/// user that says what is wrong.
[[nodiscard]] QString prepareHandOffFolder();

/// The path of the hand-off file, which is missing if no network printer was chosen.
[[nodiscard]] QString handOffFile();

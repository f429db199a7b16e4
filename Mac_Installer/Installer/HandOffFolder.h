// The user's documents folder as the installer sees it: it must exist before a page can write to it, and the
// summary reads there what the pages left.

#pragma once

#include <QString>

/// Path of the folder; it need not exist.
[[nodiscard]] QString handOffFolder();

/// Creates the folder when it is missing. Returns null when the installation can be carried out with it,
/// otherwise a sentence for the person that says what is wrong.
[[nodiscard]] QString prepareHandOffFolder();

// Push buttons and radio buttons that act at once or not at all, in the window and in its pages.
//
// Qt defers the click of a mnemonic, and of an assistive "Press", by 100 ms, and then clicks even if the
// button has been disabled or hidden meanwhile. It also lets assistive programs operate a window behind a
// modal alert.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

/// Whether the user can operate `widget` now: it is enabled, visible and not behind a modal dialog. Main
/// thread.
[[nodiscard]] INSTALLERPLUGINS_EXPORT bool isOperable(const QWidget* widget);

/// From now on, all push buttons and radio buttons of the application act on mnemonics and assistive actions
/// immediately, and ignore them while they are not operable. The first InstallerPane calls it; further calls
/// do nothing. Main thread.
void makeButtonsImmediate();

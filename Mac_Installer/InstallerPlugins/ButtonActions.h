// Makes push buttons and radio buttons in the window and its pages act immediately or not at all.
//
// Qt delays the click of a mnemonic or an assistive "Press" by 100 ms, and clicks even if the button has been
// disabled or hidden meanwhile. It also lets assistive technology operate a window behind a modal alert.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

/// Whether the user can operate `widget` now: it is enabled, visible and not blocked by a modal dialog. Main
/// thread.
[[nodiscard]] INSTALLERPLUGINS_EXPORT bool isOperable(const QWidget* widget);

/// From now on, all push buttons and radio buttons of the application react to mnemonics and assistive
/// actions immediately, or ignore them while not operable. Called once, before any button is created. Main
/// thread.
INSTALLERPLUGINS_EXPORT void makeButtonsImmediate();

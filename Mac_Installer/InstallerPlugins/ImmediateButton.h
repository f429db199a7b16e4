// Buttons that act at once, or not at all, for the window and its pages.
//
// Qt defers the click of a mnemonic, and of an assistive "Press", by 100 ms, and then clicks even if the
// button has been disabled or hidden meanwhile. It also lets an assistive program work controls behind a
// modal alert.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

/// Whether the user can operate `widget` now: it is enabled, visible and not behind a modal dialog. Main thread.
[[nodiscard]] INSTALLERPLUGINS_EXPORT bool isOperable(const QWidget* widget);

/// From now on, push buttons and radio buttons act on mnemonics and assistive actions immediately, and ignore them
/// while they are not operable. Once per application, before the first button is created; every page sees to it.
/// Main thread.
void makeButtonsImmediate();

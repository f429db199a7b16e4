// The page's modal alert with one button.

#pragma once

#include <QString>

class QWidget;

/// Shows an alert over the window of `parent`, with the button "Ok", and returns when it is closed by any
/// means. Main thread; runs a nested event loop.
void runAlert(QWidget* parent, const QString& messageText, const QString& informativeText);

// The page's only way to tell the person something: a modal alert with one button.

#pragma once

#include <QString>

class QWidget;

/// Shows an alert over the window of `parent`, with the button "Ok", and returns when it is closed by
/// whatever means. Main thread; other events of the program go on meanwhile.
void runAlert(QWidget* parent, const QString& messageText, const QString& informativeText);

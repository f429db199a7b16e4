// The user's settings for the program that loads the page.

#pragma once

#include <QString>

/// Stores a setting under the running application's name; a failure to store it is of no consequence and is
/// not reported. Main thread.
void setUserDefault(const QString& key, bool value);

// The user's settings for the program that loads the page.

#pragma once

#include <QString>

/// Stores a setting under the running application's name; failures are harmless and ignored. Main thread.
void setUserDefault(const QString& key, bool value);

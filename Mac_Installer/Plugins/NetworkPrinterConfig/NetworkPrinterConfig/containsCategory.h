// The string test that the page's look-ups share.

#pragma once

#include <QString>

/// Whether `argument` occurs in `receiver`, literally and case-sensitively. An empty or null argument never
/// does. Any thread.
[[nodiscard]] bool containsString(const QString& receiver, const QString& argument);

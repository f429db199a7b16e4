// The substring test used by the page's look-ups.

#pragma once

#include <QString>

/// Whether `argument` occurs in `receiver`, literally and case-sensitively. False for an empty or null
/// argument. Any thread.
[[nodiscard]] bool containsString(const QString& receiver, const QString& argument);

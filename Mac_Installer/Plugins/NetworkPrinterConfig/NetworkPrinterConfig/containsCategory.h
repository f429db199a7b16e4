// Substring search in which nothing contains an empty text.

#pragma once

#include <QString>

/// Whether `argument` occurs in `receiver`, literally and case-sensitively. False for an empty or null
/// argument. Any thread.
[[nodiscard]] inline bool containsString(const QString& receiver, const QString& argument) {
    return !argument.isEmpty() && receiver.contains(argument);
}

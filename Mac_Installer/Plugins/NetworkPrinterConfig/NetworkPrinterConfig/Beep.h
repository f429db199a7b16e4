// The page's system beep, replaceable in tests.

#pragma once

#include <functional>

/// Sounds the system beep, or calls the replacement set by setBeep. Main thread.
void beep();

/// Replaces the beep, so that tests can count it; an empty function restores the system beep. Main thread.
void setBeep(std::function<void()> replacement);

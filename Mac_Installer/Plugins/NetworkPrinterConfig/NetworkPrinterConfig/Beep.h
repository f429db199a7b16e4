// The one place from which the page sounds the system beep.

#pragma once

#include <functional>

/// Sounds the system beep, or calls what setBeep was given. Main thread.
void beep();

/// Replaces the beep, so that a test can count it; an empty function brings the system's back. Main thread.
void setBeep(std::function<void()> replacement);

// The page's system beep.

#pragma once

#include <QApplication>

#include <functional>

/// Replaceable, so that tests can count it. Main thread.
inline std::function<void()> beep = &QApplication::beep;

#pragma once

#include <QApplication>

/// The page's system beep, replaceable so that tests can count it. Main thread.
inline void (*beep)() = &QApplication::beep;

#pragma once

#include <QApplication>

#include <functional>

/// The page's system beep, replaceable so that tests can count it. Main thread.
inline std::function<void()> beep = &QApplication::beep;

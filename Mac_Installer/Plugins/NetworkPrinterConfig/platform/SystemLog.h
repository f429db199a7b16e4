// The system log: a few events that an administrator may want to see beside those of other programs. The
// lines go to the logging category "quazel.page"; the program that loads the page decides where they end up
// (the installer forwards them to syslog and to standard error).

#pragma once

#include "platform/StringFormat.h"

#include <QStringView>

#include <initializer_list>

/// Writes one line, made from an object format, to the system log. The formats have no line end of their own.
/// Any thread.
void systemLog(QStringView format, std::initializer_list<FormatArgument> arguments = {});

// The system log. The lines go to the logging category "quazel.page"; the host program decides where they
// end up (the installer forwards them to syslog and to standard error, kv-select to syslog only).

#pragma once

#include "platform/StringFormat.h"

/// Formats one line (stringWithFormat), which has no newline, and writes it to the system log. Any thread.
void systemLog(QStringView format, std::initializer_list<FormatArgument> arguments = {});

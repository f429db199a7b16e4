// Checks whether CUPS already has a print queue for the chosen printer. A queue matches by its name and the
// PCFileName attribute of its PPD; its device URI and options are ignored.
//
// Calls to CUPS use the default server and are synchronous. A print service that doesn't respond within ten
// seconds is treated as not running; docs/RELIABILITY.md lists where libcups waits longer. libcups leaves a
// file in TMPDIR for each queue: a link to its PPD, or a copy if the user may not read it.

#pragma once

#include <QString>

#include <cstdint>

/// Name of the queue to look for; set before each GetInstalledPrinterList call. Main thread.
extern QString g_ModelName;

/// 1 if the last GetInstalledPrinterList found the queue, otherwise 0. Main thread.
extern std::int32_t g_PrinterAlreadyInstalled;

/// Looks for a queue of the series named g_ModelName and sets g_PrinterAlreadyInstalled. An unreachable print
/// service has no queues; a queue whose PPD can't be opened is not of the series. Main thread.
void GetInstalledPrinterList();

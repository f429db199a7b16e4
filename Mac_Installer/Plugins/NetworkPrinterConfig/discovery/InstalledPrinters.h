// Whether CUPS already has a print queue for the printer that the user chose. A queue counts by its name,
// together with the attribute PCFileName of its PPD; neither its device URI nor its options are looked at.
//
// Calls to CUPS use the default server and are synchronous. A print service that does not answer within ten
// seconds counts as not running.

#pragma once

#include <QString>

#include <cstdint>

/// Name of the queue to look for, set before each call of GetInstalledPrinterList. Main thread.
extern QString g_ModelName;

/// 1 when the last GetInstalledPrinterList found the queue, otherwise 0. Main thread.
extern std::int32_t g_PrinterAlreadyInstalled;

/// Looks for a queue of the series named g_ModelName and tells in g_PrinterAlreadyInstalled whether there is
/// one. A print service that can't be reached has no queues; a queue whose PPD can't be opened is not of the
/// series. Main thread.
void GetInstalledPrinterList();

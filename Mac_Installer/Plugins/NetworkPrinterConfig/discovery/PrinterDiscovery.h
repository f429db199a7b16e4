// Finds the series' printers on the local networks: sends an SNMPv1 probe to the all-hosts group from every
// local IPv4 address, then asks each responder in turn for its IEEE 1284 device ID (PWG 5107.1).
//
// Duration: at least Timeout per local address, restarted by every datagram, plus up to one second per
// responder. At most 256 responders are asked.

#pragma once

#include <QStringList>

#include <netinet/in.h>

#include <memory>
#include <span>
#include <stop_token>

/// The result of the last run, null before the first: "Enter IP Address Manually\n", then for each printer,
/// without duplicates, "Tovik %s @%s\n" with the model name and the address in dotted decimal. Replaced by
/// each run; must not be read during a run.
extern std::shared_ptr<QStringList> g_PrinterList;

/// Resets g_PrinterList to the result of a run that found no printers. Not during a run.
void resetPrinterList();

/// Runs discovery. Blocks; returns no errors. After a stop request the run ends within one second or one
/// Timeout, whichever is longer, and keeps the printers found so far. Any thread, one run at a time.
void GetTovikQuazelPrinters(const std::stop_token& leaving = {});

/// Adds the printer that sent `reply` to g_PrinterList (not null) if it belongs to the series and is not
/// listed yet. `reply` is untrusted data received after the device ID request. Same thread as the run.
void addPrinterOfReply(std::span<const char> reply, in_addr responder);

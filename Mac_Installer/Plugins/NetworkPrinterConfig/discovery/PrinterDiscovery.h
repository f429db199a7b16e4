// Finds the series' printers on the local networks: an SNMPv1 probe to the all-hosts group from every local
// IPv4 address, then to each responder a request for its IEEE 1284 device id (PWG 5107.1), one at a time.
//
// How long a run takes: Timeout per local address at least, restarted by every datagram, and up to one second
// per responder. At most 256 responders are asked.

#pragma once

#include <QStringList>

#include <netinet/in.h>

#include <memory>
#include <span>
#include <stop_token>

/// The printers of the last run, null until the first: "Enter IP Address Manually\n", then for each printer,
/// none twice, "Tovik %s @%s\n" with the model name and the address in dotted decimal. Replaced by each run;
/// nobody reads it while one is in progress.
extern std::shared_ptr<QStringList> g_PrinterList;

/// Makes g_PrinterList the list of a run that found no printer. Not during a run.
void resetPrinterList();

/// One run. Blocks; nothing is reported but the list and the diagnostic log. Any thread, one run at a time.
void GetTovikQuazelPrinters();

/// The same, for a caller that may have to leave: once `leaving` is requested the run ends within a second or
/// one Timeout, whichever is longer, with the list as far as it has come.
void GetTovikQuazelPrinters(const std::stop_token& leaving);

/// Adds the printer that sent `reply` to g_PrinterList, which is not null, if it is one of the series and not
/// in it yet. `reply` is what came in answer to the device id request and may hold anything. Same thread as
/// the run.
void addPrinterOfReply(std::span<const char> reply, in_addr responder);

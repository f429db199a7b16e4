// Discovery without a program around it: what the network and the mandated waits cost by themselves.

#pragma once

/// Sends the same datagrams from the same local addresses as GetTovikQuazelPrinters, waits the same quiet
/// time and asks each responder in turn. Logs nothing and keeps nothing. Returns how many answered with a
/// device id.
int bareDiscovery();

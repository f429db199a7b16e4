// The first half of discovery: sends one probe to the all-hosts group from every local IPv4 address and
// collects the addresses of the responders.
//
// Limits, so that every run ends: 256 responders, and 256 failed waits and receives. Within them, collection
// on a local address ends when no datagram arrives for Timeout.

#pragma once

#include <netinet/in.h>

#include <array>
#include <cstdint>
#include <stop_token>

/// Wait for the next datagram on a local address, in milliseconds; truncated to whole seconds, so values
/// below 1000 read only what has already arrived. The program only reads it.
extern std::int32_t Timeout;

struct alignas(8) Responder {
    in_addr address;  ///< Network byte order.
};

/// The responders in order of arrival, one entry per datagram: a printer that replies twice, or to two local
/// addresses, has two entries.
struct ResponderTable {
    static constexpr std::int32_t capacity = 256;
    static constexpr std::int32_t maximumFailures = 256;

    std::array<Responder, capacity> entries{};
    std::int32_t count = 0;
    std::int32_t failures = 0;  ///< Failed waits and receives.

    /// Collection ends when the table is full, or after too many failures: waits that keep failing and
    /// datagrams that are announced but can't be received would otherwise keep the run going forever.
    [[nodiscard]] bool isClosed() const { return count >= capacity || failures >= maximumFailures; }
};

/// Sends the probes and fills `responders`. Blocks for at least Timeout per local address; each datagram
/// restarts the wait. Ends within one Timeout after a stop request on `leaving`. If the interfaces can't be
/// listed, nothing is sent or logged. Any thread, one call at a time.
void collectResponders(ResponderTable& responders, const std::stop_token& leaving);

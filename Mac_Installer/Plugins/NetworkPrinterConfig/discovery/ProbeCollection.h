// The first half of discovery: one probe to the all-hosts group from every local IPv4 address, and the
// addresses of all who answer.
//
// Limits, so that a run ends whatever the network and the machine do: 256 responders, and 256 waits and
// receives that failed. Within them, collection on one local address ends at its first quiet time (Timeout).

#pragma once

#include <netinet/in.h>

#include <array>
#include <cstdint>
#include <stop_token>

/// Quiet time that ends the collection on one local address, in milliseconds; used as whole seconds, so
/// anything below 1000 reads only what has already arrived. Only read by the program.
extern std::int32_t Timeout;

struct alignas(8) Responder {
    in_addr address;  ///< Network byte order.
};

/// Who answered, in the order of arrival: one entry a datagram, so a printer that answers twice, or to two
/// local addresses, stands in it twice.
struct ResponderTable {
    static constexpr std::int32_t capacity = 256;
    static constexpr std::int32_t maximumFailures = 256;

    std::array<Responder, capacity> entries{};
    std::int32_t count = 0;
    std::int32_t failures = 0;  ///< Of waits and receives.

    /// A full table ends the collection, as there is nothing left to collect into. So do waits that time and
    /// again are cut short, and sockets that time and again have a datagram announced and none to give: they
    /// would hold up the run for ever.
    [[nodiscard]] bool isClosed() const { return count >= capacity || failures >= maximumFailures; }
};

/// Tells standard error and the diagnostic log why a receive failed, which errno says. Any thread.
void reportFailedReceive();

/// Sends the probes and fills `responders`. Blocks for at least Timeout per local address; each datagram
/// starts the wait anew. Ends within one Timeout after `leaving` is requested. Without a list of interfaces
/// nothing is sent and nothing is logged. Any thread, one at a time.
void collectResponders(ResponderTable& responders, const std::stop_token& leaving);

// The responder's half of SNMPv1 (RFC 1157): takes a request datagram apart and builds the GetResponse.
// Knows two objects: 1.3.6.1.2.1.43.5.1.1.1.1, which a GetNextRequest of the Printer MIB's root
// 1.3.6.1.2.1.43 finds, and ppmPrinterIEEE1284DeviceId 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1 (PWG 5107.1).
// Limits: version 0 and community "public" only; definite lengths and one-byte tags only; no object can be
// set; a response larger than a UDP datagram becomes tooBig.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace snmp {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline constexpr std::size_t maxDatagram = 65507;  // what IPv4 and UDP headers leave of 65535 bytes

enum class PduType : std::uint8_t { GetRequest = 0xA0, GetNextRequest = 0xA1, SetRequest = 0xA3 };

// Its views point into the datagram it was parsed from.
struct Request {
    PduType type = PduType::GetRequest;
    ByteView requestId;               // the INTEGER with its header, so that any length goes back as it came
    ByteView varbinds;                // the list's content, for a response that repeats it
    std::vector<ByteView> objectIds;  // one for each varbind, never empty
};

// Nothing for a datagram that a responder leaves unanswered: malformed, another version, another community.
std::optional<Request> parseRequest(ByteView datagram);

bool asksForDeviceId(const Request& request);

Bytes buildResponse(const Request& request, std::string_view deviceId);

}  // namespace snmp

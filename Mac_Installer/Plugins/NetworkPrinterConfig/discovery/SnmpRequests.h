// The two requests of discovery: SNMPv1 messages in BER (RFC 1157), all lengths in short form. They are
// constant; replies are not matched by request id.

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr std::uint16_t snmpPort = 161;
inline constexpr const char* allHostsGroup = "224.0.0.1";

/// A request for one object, with the printers' factory-default read-only community.
template <std::size_t Size>
[[nodiscard]] constexpr auto snmpRequest(std::uint8_t pdu, std::uint8_t requestId,
                                         const std::uint8_t (&object)[Size]) {
    constexpr std::uint8_t size = Size;
    std::array<std::uint8_t, 32 + Size> message{
        0x30, 30 + size,                                      // SEQUENCE: the message
        0x02, 0x01,      0x00,                                // version: SNMPv1
        0x04, 0x06,      'p',       'u', 'b', 'l', 'i', 'c',  // community
        pdu,  17 + size,                                      // the PDU
        0x02, 0x01,      requestId,                           // request-id
        0x02, 0x01,      0x00,                                // error-status
        0x02, 0x01,      0x00,                                // error-index
        0x30, 6 + size,                                       // variable-bindings
        0x30, 4 + size,                                       // one binding
        0x06, size,                                           // its OBJECT IDENTIFIER, followed by its value
    };
    std::copy_n(object, Size, message.end() - Size - 2);
    message[message.size() - 2] = 0x05;  // NULL
    return message;
}

/// GetNextRequest for 1.3.6.1.2.1.43, the root of the Printer MIB (RFC 3805): every printer has an object
/// after it.
inline constexpr auto probeRequest = snmpRequest(0xA1, 1, {0x2B, 0x06, 0x01, 0x02, 0x01, 0x2B});

/// GetRequest for 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1: ppmPrinterIEEE1284DeviceId of the PWG Port Monitor MIB
/// (PWG 5107.1), instance 1.
inline constexpr auto deviceIdRequest = snmpRequest(
    0xA0, 2, {0x2B, 0x06, 0x01, 0x04, 0x01, 0x95, 0x0B, 0x01, 0x02, 0x01, 0x02, 0x01, 0x01, 0x03, 0x01});

static_assert(probeRequest.size() == 38 && deviceIdRequest.size() == 47);

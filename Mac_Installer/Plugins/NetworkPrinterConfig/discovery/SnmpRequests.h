// The two requests of discovery: SNMPv1 messages in BER (RFC 1157), all lengths in short form. They are
// constant; replies are not matched by request id.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr std::uint16_t snmpPort = 161;
inline constexpr const char* allHostsGroup = "224.0.0.1";

/// The printers' factory-default read-only community. The lengths below assume six octets.
inline constexpr std::array<std::uint8_t, 6> community{'p', 'u', 'b', 'l', 'i', 'c'};

/// GetNextRequest, request id 1, for 1.3.6.1.2.1.43, the root of the Printer MIB (RFC 3805): every printer
/// has an object after it.
inline constexpr std::array<std::uint8_t, 38> probeRequest{
    0x30,         0x24,                                                    // SEQUENCE: the message
    0x02,         0x01,         0x00,                                      // version: SNMPv1
    0x04,         0x06,         community[0], community[1], community[2],  // community
    community[3], community[4], community[5],                              //
    0xA1,         0x17,                                                    // GetNextRequest-PDU
    0x02,         0x01,         0x01,                                      // request-id
    0x02,         0x01,         0x00,                                      // error-status
    0x02,         0x01,         0x00,                                      // error-index
    0x30,         0x0C,                                                    // variable-bindings
    0x30,         0x0A,                                                    // one binding
    0x06,         0x06,         0x2B,         0x06,         0x01,         0x02, 0x01, 0x2B,  // 1.3.6.1.2.1.43
    0x05,         0x00,                                                                      // NULL
};

/// GetRequest, request id 2, for 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1: ppmPrinterIEEE1284DeviceId of the PWG Port
/// Monitor MIB (PWG 5107.1), instance 1.
inline constexpr std::array<std::uint8_t, 47> deviceIdRequest{
    0x30,         0x2D,                                                    // SEQUENCE: the message
    0x02,         0x01,         0x00,                                      // version: SNMPv1
    0x04,         0x06,         community[0], community[1], community[2],  // community
    community[3], community[4], community[5],                              //
    0xA0,         0x20,                                                    // GetRequest-PDU
    0x02,         0x01,         0x02,                                      // request-id
    0x02,         0x01,         0x00,                                      // error-status
    0x02,         0x01,         0x00,                                      // error-index
    0x30,         0x15,                                                    // variable-bindings
    0x30,         0x13,                                                    // one binding
    0x06,         0x0F,         0x2B,         0x06,         0x01,         0x04, 0x01,
    0x95,         0x0B,         0x01,                                                  // 1.3.6.1.4.1.2699.1
    0x02,         0x01,         0x02,         0x01,         0x01,         0x03, 0x01,  // .2.1.2.1.1.3.1
    0x05,         0x00,                                                                // NULL
};

// IPv4 UDP sockets and their addresses.

#pragma once

#include "platform/Descriptor.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstdint>

/// If the socket can't be opened the descriptor is -1, and every call on it fails.
struct UdpSocket : Descriptor {
    UdpSocket() : Descriptor(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP)) {}
};

/// Builds a socket address; `port` in host byte order.
[[nodiscard]] inline sockaddr_in socketAddress(in_addr address, std::uint16_t port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    result.sin_addr = address;
    return result;
}

using DottedDecimal = std::array<char, INET_ADDRSTRLEN>;

/// The address in dotted decimal, NUL-terminated.
[[nodiscard]] inline DottedDecimal dottedDecimal(in_addr address) {
    DottedDecimal text{};
    ::inet_ntop(AF_INET, &address, text.data(), text.size());
    return text;
}

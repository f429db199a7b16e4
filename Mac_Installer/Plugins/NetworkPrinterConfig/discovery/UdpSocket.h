// IPv4 UDP sockets, their addresses, and the replies that they receive.

#pragma once

#include "handoff/DiagnosticLog.h"
#include "platform/Descriptor.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

inline constexpr std::size_t maximumReplySize = 1024;

/// If the socket can't be opened the descriptor is -1, and every call on it fails.
[[nodiscard]] inline Descriptor openUdpSocket() {
    return Descriptor(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
}

/// Reports a failed receive, described by errno, on standard error and in the diagnostic log.
inline void reportFailedReceive() {
    const int error = errno;
    std::perror("recev");
    tDebugPrint("Cant able to receive anything %s\n", std::strerror(error));
}

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

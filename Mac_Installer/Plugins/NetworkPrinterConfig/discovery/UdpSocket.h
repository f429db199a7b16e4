// RAII wrapper for an IPv4 UDP socket, and conversion of its addresses.

#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>

class UdpSocket {
  public:
    /// If the socket can't be opened the descriptor is -1, and every call on it fails.
    UdpSocket() : descriptor_(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP)) {}
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;
    ~UdpSocket() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
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

/// The address in dotted decimal, NUL-terminated; empty if the conversion fails.
[[nodiscard]] inline DottedDecimal dottedDecimal(in_addr address) {
    DottedDecimal text{};
    if (::inet_ntop(AF_INET, &address, text.data(), text.size()) == nullptr) {
        text[0] = '\0';
    }
    return text;
}

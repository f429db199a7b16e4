// Preloaded into the programs of the demo where they cannot have a network of their own: keeps their
// datagrams and connections on this machine. Each socket of the internet is bound to the interface lo before
// the program gets it, so the kernel sends and receives through no other, multicast included; where it cannot
// be bound there is no socket. getifaddrs(3) reports any other interface as down and without an address.
// Limits: Linux 5.7, for the binding without privileges. It guards programs that mean no harm: one that
// calls the kernel without the C library, or removes the binding, isn't stopped. The C library's own resolver
// isn't seen; tools/loopback-network keeps it quiet.

#include <dlfcn.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <span>
#include <string_view>

namespace {

/// The function of this name that the program would have called.
template <typename Function>
Function* next(Function* /*own*/, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Whether the message names an interface to leave through; for IPv4 the kernel takes that before the
/// binding.
bool namesInterface(const msghdr& message) {
    auto& header = const_cast<msghdr&>(message);  // The macros read only.
    for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level == IPPROTO_IP && part->cmsg_type == IP_PKTINFO) {
            in_pktinfo info{};
            std::memcpy(&info, CMSG_DATA(part), sizeof(info));
            return info.ipi_ifindex != 0;
        }
    }
    return false;
}

}  // namespace

extern "C" {
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's names are reserved to it.

int socket(int domain, int type, int protocol) noexcept {
    static auto* const real = next(&socket, "socket");
    const int descriptor = real(domain, type, protocol);
    constexpr std::string_view interface = "lo";
    if (descriptor < 0 || domain == AF_UNIX || domain == AF_NETLINK ||
        ((domain == AF_INET || domain == AF_INET6) &&
         ::setsockopt(descriptor, SOL_SOCKET, SO_BINDTODEVICE, interface.data(), interface.size()) == 0)) {
        return descriptor;
    }
    ::close(descriptor);
    errno = EPERM;
    return -1;
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    static auto* const real = next(&sendmsg, "sendmsg");
    if (namesInterface(*message)) {
        errno = EPERM;
        return -1;
    }
    return real(descriptor, message, flags);
}

int sendmmsg(int descriptor, mmsghdr* messages, unsigned int count, int flags) {
    static auto* const real = next(&sendmmsg, "sendmmsg");
    for (const mmsghdr& message : std::span(messages, count)) {
        if (namesInterface(message.msg_hdr)) {
            errno = EPERM;
            return -1;
        }
    }
    return real(descriptor, messages, count, flags);
}

int getifaddrs(ifaddrs** list) noexcept {
    static auto* const real = next(&getifaddrs, "getifaddrs");
    const int result = real(list);
    for (ifaddrs* entry = result == 0 ? *list : nullptr; entry != nullptr; entry = entry->ifa_next) {
        if ((entry->ifa_flags & IFF_LOOPBACK) == 0) {
            entry->ifa_flags = 0;
            entry->ifa_addr = nullptr;
        }
    }
    return result;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
}

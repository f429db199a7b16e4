// Preloaded into the demo's programs where a private network is not allowed: keeps their traffic on this
// machine. Every IPv4 and IPv6 socket is bound to the interface lo before the program gets it, so the kernel
// uses no other interface, not even for multicast; if binding fails, so does socket(). getifaddrs() reports
// all other interfaces as down and without an address.
// Limits: Linux 5.7, to bind without privileges. Not a protection against hostile programs, which can make
// system calls directly or remove the binding. The C library's own resolver is not covered;
// tools/loopback-network disables it.

#include <dlfcn.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

namespace {

/// The next definition of this function, usually the C library's.
template <typename Function>
Function* next(Function* /*own*/, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Whether the message selects an outgoing interface, which for IPv4 overrides the binding.
bool namesInterface(const msghdr& message) {
    auto& header = const_cast<msghdr&>(message);  // The macros only read it.
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

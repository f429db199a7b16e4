#include "discovery/ProbeCollection.h"

#include "discovery/SnmpRequests.h"
#include "discovery/UdpSocket.h"
#include "handoff/DiagnosticLog.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/select.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>

std::int32_t Timeout = 1000;

namespace {

/// Whether an interface is up and has an IPv4 address. Loopback and point-to-point interfaces count.
bool isUsable(const ifaddrs& entry) {
    return (entry.ifa_flags & IFF_UP) != 0 && entry.ifa_addr != nullptr &&
           entry.ifa_addr->sa_family == AF_INET;
}

/// Errors are ignored: a probe that was not sent gets no reply, and the wait times out.
void sendProbe(int descriptor, in_addr local) {
    const sockaddr_in from = socketAddress(local, 0);
    (void)::bind(descriptor, reinterpret_cast<const sockaddr*>(&from), sizeof(from));
    const sockaddr_in group = socketAddress({::inet_addr(allHostsGroup)}, snmpPort);
    // Linux rejects an int here (it expects a timeval), so only select() limits the wait.
    const std::int32_t receiveTimeout = 1000;
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &receiveTimeout, sizeof(receiveTimeout));
    ::sendto(descriptor, probeRequest.data(), probeRequest.size(), 0,
             reinterpret_cast<const sockaddr*>(&group), sizeof(group));
}

/// select() on one descriptor, or on none (-1) just to wait.
int waitForDatagram(int descriptor) {
    fd_set readable;
    FD_ZERO(&readable);
    if (descriptor >= 0) {
        FD_SET(descriptor, &readable);
    }
    timeval wait{std::max(Timeout / 1000, 0), 0};  // Set each time: Linux overwrites it.
    errno = 0;
    return ::select(descriptor + 1, &readable, nullptr, nullptr, &wait);
}

void receiveReply(int descriptor, ResponderTable& responders) {
    tDebugPrint("Waiting for Recevfrom\n");
    std::array<char, maximumReplySize> reply;
    sockaddr_in source{};
    socklen_t sourceLength = sizeof(source);
    // A datagram can be announced and then be gone: the receive must fail, not block. The descriptor itself
    // stays blocking, as select() announces datagrams with bad checksums on a non-blocking one.
    const ssize_t received = ::recvfrom(descriptor, reply.data(), reply.size(), MSG_DONTWAIT,
                                        reinterpret_cast<sockaddr*>(&source), &sourceLength);
    if (received < 0) {
        reportFailedReceive();
        ++responders.failures;
        return;
    }
    // Any sender counts as a responder; its device ID is checked later.
    responders.entries[static_cast<std::size_t>(responders.count)].address = source.sin_addr;
    ++responders.count;
}

/// Collects replies on one socket until none arrives for Timeout.
void collectReplies(int descriptor, ResponderTable& responders, const std::stop_token& leaving) {
    // FD_SET on a descriptor of FD_SETSIZE or above would overflow the set. Such a socket is not listened on,
    // like one that could not be opened.
    const int listened = descriptor < FD_SETSIZE ? descriptor : -1;
    while (!responders.isClosed() && !leaving.stop_requested()) {
        const int ready = waitForDatagram(listened);
        if (ready == 0) {
            return;
        }
        if (ready > 0) {
            receiveReply(descriptor, responders);
            continue;
        }
        tDebugPrint("Select return -1 %d\n", errno);
        ++responders.failures;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // A lasting error recurs at once.
    }
}

void probeFrom(in_addr local, ResponderTable& responders, const std::stop_token& leaving) {
    errno = 0;
    const Descriptor socket = openUdpSocket();
    tDebugPrint("**** %s\n", dottedDecimal(local).data());
    sendProbe(socket.descriptor(), local);
    collectReplies(socket.descriptor(), responders, leaving);
    tDebugPrint("Out of While loop\n");
}

}  // namespace

void collectResponders(ResponderTable& responders, const std::stop_token& leaving) {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) {
        return;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
    for (const ifaddrs* entry = list; entry != nullptr && !responders.isClosed() && !leaving.stop_requested();
         entry = entry->ifa_next) {
        if (isUsable(*entry)) {
            probeFrom(reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr, responders, leaving);
        }
    }
}

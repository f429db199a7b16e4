#include "BareDiscovery.h"

#include "discovery/SnmpRequests.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

// C in all but the name of the file: one loop after the other, and every system call that discovery can't do
// without.

namespace {

constexpr int maximumResponders = 256;

struct Responders {
    in_addr address[maximumResponders];
    int count;
};

sockaddr_in snmpAddress(in_addr address) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(snmpPort);
    result.sin_addr = address;
    return result;
}

void probe(in_addr local, Responders* responders) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    sockaddr_in address = snmpAddress(local);
    address.sin_port = 0;
    bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    address = snmpAddress({inet_addr(allHostsGroup)});
    sendto(descriptor, probeRequest.data(), probeRequest.size(), 0,
           reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    while (responders->count < maximumResponders) {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(descriptor, &readable);
        timeval quietTime{1, 0};
        if (select(descriptor + 1, &readable, nullptr, nullptr, &quietTime) <= 0) {
            break;
        }
        char reply[1024];
        socklen_t length = sizeof(address);
        if (recvfrom(descriptor, reply, sizeof(reply), 0, reinterpret_cast<sockaddr*>(&address), &length) >=
            0) {
            responders->address[responders->count++] = address.sin_addr;
        }
    }
    close(descriptor);
}

bool answersWithDeviceId(in_addr responder) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    const timeval oneSecond{1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &oneSecond, sizeof(oneSecond));
    const sockaddr_in address = snmpAddress(responder);
    sendto(descriptor, deviceIdRequest.data(), deviceIdRequest.size(), 0,
           reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    char reply[1024];
    const ssize_t size = recvfrom(descriptor, reply, sizeof(reply), 0, nullptr, nullptr);
    close(descriptor);
    return size > 0 && memmem(reply, static_cast<size_t>(size), "MFG:", 4) != nullptr;
}

}  // namespace

int bareDiscovery() {
    Responders responders{};
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        return 0;
    }
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if ((entry->ifa_flags & IFF_UP) != 0 && entry->ifa_addr != nullptr &&
            entry->ifa_addr->sa_family == AF_INET) {
            probe(reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr, &responders);
        }
    }
    freeifaddrs(list);
    int printers = 0;
    for (int index = 0; index < responders.count; ++index) {
        printers += answersWithDeviceId(responders.address[index]) ? 1 : 0;
    }
    return printers;
}

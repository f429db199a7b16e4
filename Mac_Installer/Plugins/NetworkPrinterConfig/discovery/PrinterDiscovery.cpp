#include "discovery/PrinterDiscovery.h"

#include "discovery/DeviceId.h"
#include "discovery/ModelCatalog.h"
#include "discovery/ProbeCollection.h"
#include "discovery/SnmpRequests.h"
#include "discovery/UdpSocket.h"
#include "handoff/DiagnosticLog.h"

#include <poll.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <optional>

std::shared_ptr<QStringList> g_PrinterList;

namespace {

/// Whether data arrives within one second; if not, errno is set as by a failed receive. SO_RCVTIMEO is not
/// enough: the kernel restarts it after each datagram with a bad checksum, so it may never expire.
bool isReadableInTime(int descriptor) {
    pollfd waiting{descriptor, POLLIN, 0};
    const int ready = descriptor < 0 ? 1 : ::poll(&waiting, 1, 1000);  // Without a socket the receive fails.
    if (ready == 0) {
        errno = EAGAIN;
    }
    return ready > 0;
}

/// Sends the device ID request and waits up to one second for a datagram from any sender. Returns its size,
/// or -1 with errno set.
ssize_t askForDeviceId(in_addr responder, std::span<char> reply) {
    const Descriptor socket = openUdpSocket();
    sockaddr_in address = socketAddress(responder, snmpPort);
    socklen_t addressLength = sizeof(address);
    const timeval oneSecond{1, 0};
    ::setsockopt(socket.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &oneSecond, sizeof(oneSecond));
    ::sendto(socket.descriptor(), deviceIdRequest.data(), deviceIdRequest.size(), 0,
             reinterpret_cast<const sockaddr*>(&address), addressLength);
    tDebugPrint("Waiting for receive from 2@@@ \n");
    tDebugPrint("IP address is: %s\n", dottedDecimal(responder).data());
    if (!isReadableInTime(socket.descriptor())) {
        return -1;
    }
    return ::recvfrom(socket.descriptor(), reply.data(), reply.size(), 0,
                      reinterpret_cast<sockaddr*>(&address), &addressLength);
}

void examineResponder(in_addr responder) {
    std::array<char, maximumReplySize> reply{};
    const ssize_t received = askForDeviceId(responder, reply);
    if (received < 0) {
        reportFailedReceive();
        return;
    }
    addPrinterOfReply(std::span(reply).first(static_cast<std::size_t>(received)), responder);
}

}  // namespace

void addPrinterOfReply(std::span<const char> reply, in_addr responder) {
    const std::optional<DeviceIdText> text = findDeviceIdText(reply);
    if (!text) {
        return;
    }
    const PrinterInfo info = parseDeviceId(*text);
    if (!IsQuazel(info.szModel)) {
        return;
    }
    tDebugPrint("Response is %s\n", info.szModel);
    const QString entry = QString::asprintf("Tovik %s @%s\n", modelNameOfAcceptedText(info.szModel),
                                            dottedDecimal(responder).data());
    if (!g_PrinterList->contains(entry)) {
        g_PrinterList->append(entry);
    }
    tDebugPrint("Count Inside Is %d\n", static_cast<int>(g_PrinterList->count()));
    tDebugPrint("Printer manufacture is %s\n", info.szManufacturer);
    tDebugPrint("Printer modal is %s\n", info.szModel);
}

void resetPrinterList() {
    g_PrinterList = std::make_shared<QStringList>(QStringLiteral("Enter IP Address Manually\n"));
}

void GetTovikQuazelPrinters(const std::stop_token& leaving) {
    tDebugPrint("GetTovikQuazelPrinters\n");
    errno = 0;
    resetPrinterList();

    ResponderTable responders;
    collectResponders(responders, leaving);

    tDebugPrint("Total Printers avialable in the Network %d\n", responders.count);
    for (std::int32_t index = 0; index < responders.count && !leaving.stop_requested(); ++index) {
        examineResponder(responders.entries[static_cast<std::size_t>(index)].address);
    }
    tDebugPrint("Returning to UI**\n");
}

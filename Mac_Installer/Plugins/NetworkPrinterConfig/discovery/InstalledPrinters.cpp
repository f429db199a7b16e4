#include "discovery/InstalledPrinters.h"

#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QScopeGuard>

#include <cups/cups.h>
#include <cups/ppd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <memory>
#include <span>

QString g_ModelName = QStringLiteral("");  // NOLINT(cert-err58-cpp): a literal allocates nothing
std::int32_t g_PrinterAlreadyInstalled = 0;

namespace {

constexpr const char* seriesAttribute = "PCFileName";
constexpr int answerLimit = 10'000;  // ms; a service that takes longer is considered silent
constexpr int slowAnswer = 1'000;    // ms; after a slower PPD request, the service is checked again

using Ppd = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

/// Whether the default server fails to accept a connection and respond on it within answerLimit. libcups has
/// no such timeout on its default connection and would wait for minutes, so this uses a separate connection.
bool doesServiceTimeOut() {
    QElapsedTimer timer;
    timer.start();
    // Unencrypted, as the TLS handshake has no timeout either; a server that requires encryption refuses,
    // which counts as a response.
    const std::unique_ptr<http_t, decltype(&httpClose)> service(
        httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, HTTP_ENCRYPTION_NEVER, 1, answerLimit,
                     nullptr),
        &httpClose);
    if (!service) {
        return timer.elapsed() >= answerLimit;
    }
    httpClearFields(service.get());  // Sets the Host field; cupsd logs an error without it.
    const int left = std::max(0, answerLimit - static_cast<int>(timer.elapsed()));
    return httpOptions(service.get(), "*") == 0 && httpWait(service.get(), left) == 0;
}

bool isServiceSilent() {
    const bool isSilent = doesServiceTimeOut();
    if (isSilent) {
        systemLog(u"The print service does not answer; its queues are not checked");
    }
    return isSilent;
}

/// Whether the queue is local and its PPD installed, but not readable for this user. On Debian, PPDs belong
/// to the group lp, and only root and members of lp may read them.
bool isInstalledPpdUnreadable(const char* queue) {
    const QByteArray server(cupsServer());
    if (!server.startsWith('/') && server.compare("localhost", Qt::CaseInsensitive) != 0) {
        return false;
    }
    const QByteArray root = qgetenv("CUPS_SERVERROOT");
    const QByteArray ppd = (root.isEmpty() ? "/etc/cups" : root) + "/ppd/" + queue + ".ppd";
    return ::access(ppd.constData(), R_OK) != 0 && errno == EACCES;
}

/// The file that CUPS creates for a queue's PPD: a link to the installed PPD, or a copy. Null for a queue
/// without a PPD, and once the service has stopped responding.
const char* requestPpdOf(const char* queue, bool& isSilent) {
    if (isSilent) {
        return nullptr;
    }
    QElapsedTimer timer;
    timer.start();
    const char* const file = cupsGetPPD2(CUPS_HTTP_DEFAULT, queue);
    isSilent = timer.elapsed() >= slowAnswer && isServiceSilent();
    return file;
}

/// Opens the PPD of a queue: the target of the link that CUPS provides for local queues, or, if the user may
/// not read the target, the copy that CUPS provides instead. Nothing else is opened; a queue may have no PPD.
Ppd openPpdOf(const char* queue, bool& isSilent) {
    std::array<char, 1024> path{};
    const char* const file = requestPpdOf(queue, isSilent);
    const ssize_t length = file == nullptr ? 0 : ::readlink(file, path.data(), path.size());
    if (length == std::ssize(path)) {
        path.fill('\0');  // Not terminated, and maybe truncated.
    } else if (length < 0 && isInstalledPpdUnreadable(queue)) {
        qstrncpy(path.data(), file, path.size());
    }
    tDebugPrint("PPD name is %s\n", path.data());
    Ppd ppd(ppdOpenFile(path.data()), &ppdClose);
    if (!ppd) {
        tDebugPrint("PPD open failed %d\n", errno);
    }
    return ppd;
}

/// Whether a queue of the series is named g_ModelName.
bool isQueueLookedFor(const char* queue) {
    const QString str = QString::fromUtf8(queue);
    tDebugPrint("String str Value is %s\n", UTF8String(str).constData());
    if (str == g_ModelName) {
        tDebugPrint("ModelName String was found\n");
        return true;
    }
    tDebugPrint("ModelName string was not found\n");
    return false;
}

void examineQueue(const char* queue, bool& isSilent) {
    tDebugPrint("Printer name is %s\n", textOrNull(queue));
    const Ppd ppd = openPpdOf(queue, isSilent);
    if (!ppd) {
        return;
    }
    // A PPD may contain several of these attributes, and any of them may match.
    for (const ppd_attr_t* attribute = ppdFindAttr(ppd.get(), seriesAttribute, nullptr); attribute != nullptr;
         attribute = ppdFindNextAttr(ppd.get(), seriesAttribute, nullptr)) {
        if (isSeriesPpdFileName(attribute->value) && isQueueLookedFor(queue)) {
            g_PrinterAlreadyInstalled = 1;
            return;
        }
        tDebugPrint("Attr  value is %s\n", textOrNull(attribute->value));
    }
}

}  // namespace

void GetInstalledPrinterList() {
    tDebugPrint("GetInstalledPrinterList\n");
    g_PrinterAlreadyInstalled = 0;
    bool isSilent = isServiceSilent();
    cups_dest_t* queues = nullptr;
    const int count = isSilent ? 0 : cupsGetDests2(CUPS_HTTP_DEFAULT, &queues);
    const auto owner = qScopeGuard([&] { cupsFreeDests(count, queues); });
    tDebugPrint("Number of printers found in the system is %d\n", count);
    tDebugPrint("Model Name *** Is %s\n", UTF8String(g_ModelName).constData());
    // Doesn't stop at a match: the remaining queues are still examined and logged.
    for (const cups_dest_t& queue : std::span(queues, static_cast<std::size_t>(count))) {
        examineQueue(queue.name, isSilent);
    }
    tDebugPrint("Return from CUPS Printer List\n");
}

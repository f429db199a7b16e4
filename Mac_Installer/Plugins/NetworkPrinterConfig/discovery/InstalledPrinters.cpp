#include "discovery/InstalledPrinters.h"

#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QElapsedTimer>

#include <cups/cups.h>
#include <cups/ppd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <memory>

QString g_ModelName = QStringLiteral("");  // NOLINT(cert-err58-cpp): a literal allocates nothing
std::int32_t g_PrinterAlreadyInstalled = 0;

namespace {

constexpr const char* seriesAttribute = "PCFileName";
constexpr int answerLimit = 10'000;  // ms; a service that takes longer counts as silent
constexpr int slowAnswer = 1'000;    // ms; after a PPD that takes longer, the service is checked again

struct PpdCloser {
    void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};
using Ppd = std::unique_ptr<ppd_file_t, PpdCloser>;

/// Whether the default server fails to accept a connection, or to answer on it, within answerLimit. libcups
/// has no such limit for its default connection and would wait for minutes; this asks on a connection of its
/// own.
bool isServiceSilent() {
    QElapsedTimer timer;
    timer.start();
    // Unencrypted, as a handshake has no limit either; a server that demands encryption refuses, which is an
    // answer.
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

/// The destinations of the default server, freed together, and the links to their PPDs. A service that is
/// silent has no destinations; one that falls silent has no more links.
class PrintService {
  public:
    PrintService()
        : isSilent_(isServiceSilent()), count_(isSilent_ ? 0 : cupsGetDests2(CUPS_HTTP_DEFAULT, &list_)) {
        if (isSilent_) {
            systemLog(u"The print service does not answer; its queues are not checked");
        }
    }
    PrintService(const PrintService&) = delete;
    PrintService& operator=(const PrintService&) = delete;
    ~PrintService() { cupsFreeDests(count_, list_); }

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] const char* queueAt(int index) const { return list_[index].name; }

    /// Null for a queue without PPD.
    [[nodiscard]] const char* linkToPpdOf(const char* queue) {
        if (isSilent_) {
            return nullptr;
        }
        QElapsedTimer timer;
        timer.start();
        const char* const link = cupsGetPPD2(CUPS_HTTP_DEFAULT, queue);
        isSilent_ = timer.elapsed() >= slowAnswer && isServiceSilent();
        return link;
    }

  private:
    cups_dest_t* list_ = nullptr;
    bool isSilent_;
    int count_;
};

/// Opens the PPD of a queue. CUPS hands out a symbolic link to it for a queue of the local server; anything
/// else, and a queue without PPD, is not opened.
Ppd openPpdOf(const char* queue, PrintService& service) {
    std::array<char, 1024> path{};
    const char* const link = service.linkToPpdOf(queue);
    // A target that fills the buffer has no terminator and may be cut: such a path is not followed.
    if (link != nullptr && ::readlink(link, path.data(), path.size()) == std::ssize(path)) {
        path.fill('\0');
    }
    tDebugPrint("PPD name is %s\n", path.data());
    Ppd ppd(ppdOpenFile(path.data()));
    if (!ppd) {
        tDebugPrint("PPD open failed %d\n", errno);
    }
    return ppd;
}

/// Compares one queue of the series by its name.
bool isQueueLookedFor(const char* queue) {
    const QString str = QString::fromUtf8(queue);
    tDebugPrint("String str Value is %s\n", UTF8String(str).c_str());
    if (str == g_ModelName) {
        tDebugPrint("ModelName String was found\n");
        return true;
    }
    tDebugPrint("ModelName string was not found\n");
    return false;
}

void examineQueue(const char* queue, PrintService& service) {
    tDebugPrint("Printer name is %s\n", textOrNull(queue));
    const Ppd ppd = openPpdOf(queue, service);
    if (!ppd) {
        return;
    }
    // Several attributes of that name may stand in one PPD, and any of them may be the one.
    for (const ppd_attr_t* attribute = ppdFindAttr(ppd.get(), seriesAttribute, nullptr); attribute != nullptr;
         attribute = ppdFindNextAttr(ppd.get(), seriesAttribute, nullptr)) {
        if (isSeriesPpdFileName(attribute->value) && isQueueLookedFor(queue)) {
            g_PrinterAlreadyInstalled = 1;
            return;
        }
        tDebugPrint("Attr  value is %s\n", textOrNull(attribute->value));
    }
}

/// A match ends nothing: the other queues are examined, and logged, as well.
void examineAllQueues() {
    PrintService service;
    tDebugPrint("Number of printers found in the system is %d\n", service.count());
    tDebugPrint("Model Name *** Is %s\n", UTF8String(g_ModelName).c_str());
    for (int index = 0; index < service.count(); ++index) {
        examineQueue(service.queueAt(index), service);
    }
}

}  // namespace

void GetInstalledPrinterList() {
    tDebugPrint("GetInstalledPrinterList\n");
    g_PrinterAlreadyInstalled = 0;
    examineAllQueues();
    tDebugPrint("Return from CUPS Printer List\n");
}

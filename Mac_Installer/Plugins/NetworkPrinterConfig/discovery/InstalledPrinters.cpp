#include "discovery/InstalledPrinters.h"

#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"

#include <cups/cups.h>
#include <cups/ppd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <memory>

QString g_ModelName = QStringLiteral("");  // NOLINT(cert-err58-cpp): a literal allocates nothing
std::int32_t g_PrinterAlreadyInstalled = 0;

namespace {

constexpr const char* seriesAttribute = "PCFileName";

struct PpdCloser {
    void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};
using Ppd = std::unique_ptr<ppd_file_t, PpdCloser>;

/// The destinations of the default server, freed together.
class Destinations {
  public:
    Destinations() : count_(cupsGetDests2(CUPS_HTTP_DEFAULT, &list_)) {}
    Destinations(const Destinations&) = delete;
    Destinations& operator=(const Destinations&) = delete;
    ~Destinations() { cupsFreeDests(count_, list_); }

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] const cups_dest_t& at(int index) const { return list_[index]; }

  private:
    cups_dest_t* list_ = nullptr;
    int count_;
};

/// Opens the PPD of a queue. CUPS hands out a symbolic link to it for a queue of the local server; anything
/// else, and a queue without PPD, is not opened.
Ppd openPpdOf(const char* queue) {
    std::array<char, 1024> path{};
    const char* const link = cupsGetPPD2(CUPS_HTTP_DEFAULT, queue);
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

void examineQueue(const char* queue) {
    tDebugPrint("Printer name is %s\n", textOrNull(queue));
    const Ppd ppd = openPpdOf(queue);
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
    const Destinations destinations;
    tDebugPrint("Number of printers found in the system is %d\n", destinations.count());
    tDebugPrint("Model Name *** Is %s\n", UTF8String(g_ModelName).c_str());
    for (int index = 0; index < destinations.count(); ++index) {
        examineQueue(destinations.at(index).name);
    }
}

}  // namespace

void GetInstalledPrinterList() {
    tDebugPrint("GetInstalledPrinterList\n");
    g_PrinterAlreadyInstalled = 0;
    examineAllQueues();
    tDebugPrint("Return from CUPS Printer List\n");
}

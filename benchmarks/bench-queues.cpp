// The installed-printer check against a bare loop of the same libcups calls, on the queues of CUPS_SERVER
// (see tools/private-cupsd). HOME and TMPDIR are folders of the caller's.

#include "discovery/InstalledPrinters.h"

#include <QDir>

#include <benchmark/benchmark.h>
#include <cups/cups.h>
#include <cups/ppd.h>
#include <unistd.h>

namespace {

/// The links that cupsGetPPD2 makes stay. A thousand at each turn would slow the next one down.
void removeLinks() {
    QDir folder(QDir::tempPath());
    const QStringList names = folder.entryList(QDir::Files | QDir::System | QDir::Hidden);
    for (const QString& name : names) {
        folder.remove(name);
    }
}

/// What keeps a service that never answers from holding the check up.
void askWhetherTheServiceAnswers() {
    http_t* const service =
        httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, HTTP_ENCRYPTION_NEVER, 1, 10'000, nullptr);
    httpClearFields(service);
    httpOptions(service, "*");
    benchmark::DoNotOptimize(httpWait(service, 10'000));
    httpClose(service);
}

void bareCheck() {
    askWhetherTheServiceAnswers();
    cups_dest_t* list = nullptr;
    const int count = cupsGetDests2(CUPS_HTTP_DEFAULT, &list);
    for (int index = 0; index < count; ++index) {
        char path[1024] = {};
        const char* const link = cupsGetPPD2(CUPS_HTTP_DEFAULT, list[index].name);
        if (link == nullptr || ::readlink(link, path, sizeof(path) - 1) < 0) {
            continue;
        }
        ppd_file_t* const ppd = ppdOpenFile(path);
        if (ppd == nullptr) {
            continue;
        }
        for (ppd_attr_t* attribute = ppdFindAttr(ppd, "PCFileName", nullptr); attribute != nullptr;
             attribute = ppdFindNextAttr(ppd, "PCFileName", nullptr)) {
            benchmark::DoNotOptimize(attribute->value);
        }
        ppdClose(ppd);
    }
    cupsFreeDests(count, list);
}

template <void (*Check)()>
void measure(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        Check();
        state.PauseTiming();
        removeLinks();
        state.ResumeTiming();
    }
}

}  // namespace

int main(int argc, char** argv) {
    g_ModelName = QStringLiteral("Tovik-KV410-Ethernet-Printer-IP=10.0.0.200");
    GetInstalledPrinterList();  // Connects, and begins the log.
    removeLinks();
    benchmark::RegisterBenchmark("product", measure<GetInstalledPrinterList>);
    benchmark::RegisterBenchmark("bare", measure<bareCheck>);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}

// Benchmarks of product functions (NAME/product), each next to a minimal equivalent (NAME/bare). run.py sets
// HOME and TMPDIR. "discovery" needs a private network with 127.0.0.1 as its only local address and
// BENCH_PRINTERS virtual printers, at most 255; "check" uses the queues of CUPS_SERVER.

#include "discovery/InstalledPrinters.h"
#include "discovery/PrinterDiscovery.h"
#include "discovery/SnmpRequests.h"
#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"

#include <QFile>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <cups/cups.h>
#include <cups/ppd.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double quietSeconds = 0;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Discovery: both send the same datagrams, wait the same time, query each responder in turn and return the
// number of printers. The bare one neither logs nor stores results.

int productDiscovery() {
    GetTovikQuazelPrinters();
    return static_cast<int>(g_PrinterList->count()) - 1;  // The first entry is not a printer.
}

template <typename Request>
int socketWithRequest(in_addr_t to, const Request& request) {
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    (void)::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    address = {AF_INET, htons(snmpPort), {to}, {}};
    ::sendto(descriptor, request.data(), request.size(), 0, reinterpret_cast<const sockaddr*>(&address),
             sizeof address);
    return descriptor;
}

/// Waits up to a second for a datagram. Returns its sender, or INADDR_ANY; `reply` has 1024 bytes.
in_addr_t senderOf(int descriptor, char* reply) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(descriptor, &readable);
    timeval oneSecond{1, 0};
    sockaddr_in from{};
    socklen_t length = sizeof from;
    if (::select(descriptor + 1, &readable, nullptr, nullptr, &oneSecond) > 0) {
        ::recvfrom(descriptor, reply, 1024, 0, reinterpret_cast<sockaddr*>(&from), &length);
    }
    return from.sin_addr.s_addr;
}

int bareDiscovery() {
    std::vector<in_addr_t> responders;
    char reply[1024] = {};
    const int probe = socketWithRequest(::inet_addr(allHostsGroup), probeRequest);
    while (const in_addr_t responder = senderOf(probe, reply)) {
        responders.push_back(responder);
    }
    ::close(probe);
    return static_cast<int>(std::ranges::count_if(responders, [&reply](in_addr_t responder) {
        const int descriptor = socketWithRequest(responder, deviceIdRequest);
        const bool isAnswered = senderOf(descriptor, reply) == responder;
        ::close(descriptor);
        return isAnswered && ::memmem(reply, sizeof reply, "MFG:", 4) != nullptr;
    }));
}

template <auto Discover>
void discovery(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        quietSeconds = 0;
        const auto start = Clock::now();
        const int printers = Discover();
        const double seconds = secondsSince(start);
        state.SetIterationTime(seconds);
        state.counters["beyond_the_waits"] = seconds - quietSeconds;
        if (printers != qEnvironmentVariableIntValue("BENCH_PRINTERS")) {
            state.SkipWithError("not every printer was found");
        }
    }
}

// One record of the diagnostic log; and open, write and close with the same number of bytes.

void productRecord() {
    tDebugPrint("IP address is: %s\n", "10.0.0.200");
}

void bareRecord() {
    static const QByteArray path = QFile::encodeName(documentsDirectory()) + "/bare.log";
    static const QByteArray record = "Mmm dd yyyy\tIP address is: 10.0.0.200\n";
    const int file = ::open(path.constData(), O_WRONLY | O_APPEND | O_CREAT, 0666);
    benchmark::DoNotOptimize(::write(file, record.constData(), static_cast<std::size_t>(record.size())));
    ::close(file);
}

template <auto Write>
void record(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        Write();
    }
}

// The installed-printer check, and the same libcups calls and number of records.

/// The product's check for a service that never responds.
void checkThatTheServiceResponds() {
    http_t* const service =
        httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, HTTP_ENCRYPTION_NEVER, 1, 10'000, nullptr);
    httpClearFields(service);
    httpOptions(service, "*");
    benchmark::DoNotOptimize(httpWait(service, 10'000));
    httpClose(service);
}

void bareCheck() {
    checkThatTheServiceResponds();
    cups_dest_t* list = nullptr;
    const int count = cupsGetDests2(CUPS_HTTP_DEFAULT, &list);
    for (int record = 0; record < 4 + 5 * count; ++record) {
        bareRecord();  // The product logs as many.
    }
    for (int index = 0; index < count; ++index) {
        char path[1024] = {};
        const char* const link = cupsGetPPD2(CUPS_HTTP_DEFAULT, list[index].name);
        if (link == nullptr || ::readlink(link, path, sizeof path - 1) < 0) {
            continue;
        }
        ppd_file_t* const ppd = ppdOpenFile(path);
        for (const ppd_attr_t* attribute = ppdFindAttr(ppd, "PCFileName", nullptr); attribute != nullptr;
             attribute = ppdFindNextAttr(ppd, "PCFileName", nullptr)) {
            benchmark::DoNotOptimize(attribute->value);
        }
        ppdClose(ppd);
    }
    cupsFreeDests(count, list);
}

template <auto Check>
void check(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        Check();
        state.PauseTiming();
        // cupsGetPPD2 leaves its links behind; a thousand per iteration would slow down the next one.
        for (const auto& link : std::filesystem::directory_iterator(std::filesystem::temp_directory_path())) {
            std::filesystem::remove(link);
        }
        state.ResumeTiming();
    }
}

}  // namespace

/// Replaces the C library's, for both sides, to subtract the waits: the kernel may end a wait of one second a
/// millisecond late, which would hide the cost of a printer.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* wait) {
    static const auto original = reinterpret_cast<decltype(&select)>(::dlsym(RTLD_NEXT, "select"));
    const auto start = Clock::now();
    const int ready = original(count, read, write, except, wait);
    quietSeconds += ready == 0 ? secondsSince(start) : 0;
    return ready;
}

BENCHMARK(discovery<productDiscovery>)->Name("discovery/product")->Iterations(1)->UseManualTime();
BENCHMARK(discovery<bareDiscovery>)->Name("discovery/bare")->Iterations(1)->UseManualTime();
BENCHMARK(record<productRecord>)->Name("record/product");
BENCHMARK(record<bareRecord>)->Name("record/bare");
BENCHMARK(check<GetInstalledPrinterList>)->Name("check/product");
BENCHMARK(check<bareCheck>)->Name("check/bare");

int main(int argc, char** argv) {
    productRecord();  // The first record also creates the log; don't measure that.
    g_ModelName = QStringLiteral("Tovik-KV410-Ethernet-Printer-IP=10.0.0.200");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}

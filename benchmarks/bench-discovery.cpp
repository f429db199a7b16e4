// bench-discovery FILE bare|product: one discovery each way, the named one first, as JSON into FILE. Runs in
// a network of its own; its standard output is the product's.

#include "BareDiscovery.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"

#include <dlfcn.h>
#include <sys/select.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace {

using Clock = std::chrono::steady_clock;

double quietSeconds = 0;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Run {
    double seconds = 0;
    double quiet = 0;
    int printers = 0;
};

Run timed(const std::function<int()>& discover) {
    quietSeconds = 0;
    const auto start = Clock::now();
    const int printers = discover();
    return {secondsSince(start), quietSeconds, printers};
}

int productDiscovery() {
    GetTovikQuazelPrinters();
    return static_cast<int>(g_PrinterList->count()) - 1;  // The first entry is no printer.
}

}  // namespace

/// In the C library's place, for both sides. The kernel may end a wait of a second a millisecond late, more
/// than ten printers cost: what a printer costs shows only without the waits.
extern "C" int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* wait) {
    static const auto original = reinterpret_cast<decltype(&select)>(::dlsym(RTLD_NEXT, "select"));
    const auto start = Clock::now();
    const int ready = original(count, read, write, except, wait);
    if (ready == 0) {
        quietSeconds += secondsSince(start);
    }
    return ready;
}

int main(int argc, char** argv) {
    if (argc != 3 || std::getenv("QUAZEL_PRIVATE_NETWORK") == nullptr) {
        std::fputs("bench-discovery FILE bare|product, in tools/private-network\n", stderr);
        return 2;
    }
    tDebugPrint("The first record begins the log, which no later one does.\n");
    Run product;
    Run bare;
    if (std::strcmp(argv[2], "product") == 0) {
        product = timed(productDiscovery);
        bare = timed(bareDiscovery);
    } else {
        bare = timed(bareDiscovery);
        product = timed(productDiscovery);
    }
    std::FILE* const file = std::fopen(argv[1], "w");
    if (file == nullptr) {
        std::perror(argv[1]);
        return 1;
    }
    std::fprintf(file, R"({"product": [%.9f, %.9f, %d], "bare": [%.9f, %.9f, %d]})", product.seconds,
                 product.quiet, product.printers, bare.seconds, bare.quiet, bare.printers);
    return std::fclose(file) == 0 ? 0 : 1;
}

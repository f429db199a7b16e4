#include "support/TestMain.h"

#include <ifaddrs.h>

#include <cstdio>
#include <memory>
#include <string_view>

bool hasPrivateNetwork() {
    if (!qEnvironmentVariableIsSet("QUAZEL_PRIVATE_NETWORK")) {
        std::puts("SKIPPED: needs a network of its own (tools/private-network)");
        return false;
    }
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) {
        return false;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        const std::string_view name = entry->ifa_name;
        if (name != "lo" && name != "lan0") {
            std::printf("SKIPPED: %s is not of the tests' own network\n", entry->ifa_name);
            return false;
        }
    }
    return true;
}

void useNoDisplay() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

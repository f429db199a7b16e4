// main() of a test program: QUAZEL_TEST_MAIN(Class, Application) at the end of its source file.

#pragma once

#include <QTest>

// QTRY_VERIFY of Qt 6.8 narrows a duration where it is used.
#pragma GCC diagnostic ignored "-Wconversion"

#include <net/if.h>

#include <cstdio>

/// Whether tools/private-network runs this, with its bridge; and there is no other interface, so that no
/// probe can leave the machine.
inline bool hasPrivateNetwork() {
    bool isPrivate = qgetenv("QUAZEL_PRIVATE_NETWORK") == "10.0.0";
    struct if_nameindex* const interfaces = ::if_nameindex();
    for (const auto* each = interfaces; each != nullptr && each->if_index != 0; ++each) {
        isPrivate = isPrivate && (qstrcmp(each->if_name, "lo") == 0 || qstrcmp(each->if_name, "lan0") == 0);
    }
    ::if_freenameindex(interfaces);
    return isPrivate;
}

template <class Test, class Application>
int runTest(int argc, char** argv) {
    if (NEEDS_PRIVATE_NETWORK && !hasPrivateNetwork()) {
        std::puts("SKIPPED: needs a network of its own (tools/private-network --bridge)");
        return 77;  // By which ctest knows a skipped test.
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

#define QUAZEL_TEST_MAIN(Class, Application)            \
    int main(int argc, char** argv) {                   \
        return runTest<Class, Application>(argc, argv); \
    }

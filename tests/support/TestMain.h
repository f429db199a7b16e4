// main() of a test program: QUAZEL_TEST_MAIN(Class, Application) at the end of its source file.

#pragma once

#include <QTest>

// QTRY_VERIFY of Qt 6.8 narrows a duration where it is used.
#pragma GCC diagnostic ignored "-Wconversion"

/// The exit status by which ctest knows a skipped test.
inline constexpr int testSkipped = 77;

/// Whether the process has a network of its own, made by tools/private-network: the variable is set and no
/// interface but that network's is there, so that no probe can leave the machine. Says so on standard output
/// when not.
[[nodiscard]] bool hasPrivateNetwork();

/// Widgets are drawn off screen, unless QT_QPA_PLATFORM says where.
void useNoDisplay();

#ifdef QUAZEL_NETWORK_TEST
inline constexpr bool needsPrivateNetwork = true;
#else
inline constexpr bool needsPrivateNetwork = false;
#endif

#define QUAZEL_TEST_MAIN(Class, Application)               \
    int main(int argc, char** argv) {                      \
        if (needsPrivateNetwork && !hasPrivateNetwork()) { \
            return testSkipped;                            \
        }                                                  \
        useNoDisplay();                                    \
        Application application(argc, argv);               \
        Class test;                                        \
        return QTest::qExec(&test, argc, argv);            \
    }

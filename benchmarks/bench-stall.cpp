// bench-stall: runs a discovery in the installer's window. Prints the number of printers in the list, and the
// longest time, in milliseconds, between two timeouts of a one-millisecond timer on the main thread. Fails
// outside a private network.

#include "Installer/InstallerWindow.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int settleMilliseconds = 500;
constexpr int searchMilliseconds = 3000;  // With 256 printers the table is full and collection ends early.

void spin(int milliseconds) {
    QTimer::singleShot(milliseconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet("QUAZEL_PRIVATE_NETWORK")) {
        return 2;
    }
    auto* const page = new NetworkPrinterConfigPane(qApp);
    page->awakeFromNib();
    InstallerWindow window({page});
    window.show();
    spin(settleMilliseconds);

    qint64 longest = 0;
    QElapsedTimer sinceTimeout;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&longest, &sinceTimeout] {
        longest = std::max(longest, sinceTimeout.nsecsElapsed());
        sinceTimeout.start();
    });
    sinceTimeout.start();
    timer.start(1);
    // From a timer, as a user's click comes from the event loop.
    QTimer::singleShot(0, page->radiobtnPrinterType()->cellAt(1, 0), &QAbstractButton::click);
    spin(searchMilliseconds);
    return std::printf("%d %.3f\n", page->PrinterIP()->count() - 1, static_cast<double>(longest) / 1e6) < 0;
}

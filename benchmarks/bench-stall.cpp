// bench-stall PLUGINS PRINTERS: opens the installer's window with the pages of the folder PLUGINS and runs a
// discovery. Prints the longest time, in milliseconds, between two timeouts of a one-millisecond timer on the
// main thread. Fails outside a private network, and if the list does not have PRINTERS printers at the end.

#include "Installer/HandOffFolder.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/PluginLoader.h"
#include "Installer/SummaryPane.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int settleMilliseconds = 500;
constexpr int searchMilliseconds = 3000;  // With 256 printers the table is full and collection ends early.

void spin(int milliseconds) {
    QTimer::singleShot(milliseconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

/// Measured from the click that starts the search until the window is idle again.
double longestStall(InstallerWindow& window) {
    auto* const next = window.findChild<QPushButton*>(QStringLiteral("next"));
    next->click();
    auto* const types = window.findChild<QWidget*>(QStringLiteral("radiobtnPrinterType"));
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
    QTimer::singleShot(0, types, [types] { types->findChildren<QRadioButton*>().at(1)->click(); });
    spin(searchMilliseconds);
    return static_cast<double>(longest) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3 || !qEnvironmentVariableIsSet("QUAZEL_PRIVATE_NETWORK")) {
        return 2;
    }
    std::vector<InstallerPane*> pages{new IntroductionPane(prepareHandOffFolder(), qApp)};
    const LoadedPages loaded = loadPages(QString::fromLocal8Bit(argv[1]), qApp);
    pages.insert(pages.end(), loaded.pages.begin(), loaded.pages.end());
    pages.push_back(new SummaryPane(qApp));
    InstallerWindow window(pages);
    window.show();
    spin(settleMilliseconds);
    const double stall = longestStall(window);
    const int printers = window.findChild<QComboBox*>(QStringLiteral("PrinterIP"))->count() - 1;
    if (printers != std::atoi(argv[2])) {
        std::fprintf(stderr, "bench-stall: the list has %d printers instead of %s\n", printers, argv[2]);
        return 1;
    }
    return std::printf("%.3f\n", stall) > 0 ? 0 : 1;
}

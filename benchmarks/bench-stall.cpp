// bench-stall FILE PLUGINS PRINTERS: the installer's window with the pages of the folder PLUGINS, led to a
// discovery; writes the longest time, in milliseconds, for which its main thread did not come round to a
// timer of one millisecond. Fails when the list has not PRINTERS printers at the end.

#include "Installer/DocumentsFolder.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/PluginLoader.h"
#include "Installer/SummaryPane.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int settleMilliseconds = 500;
constexpr int maximumMilliseconds = 20000;

class Heart {
  public:
    Heart() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
    }

    void start() {
        sinceLastBeat_.start();
        timer_.start();
    }

    [[nodiscard]] double longestMilliseconds() const { return static_cast<double>(longest_) / 1e6; }

  private:
    void beat() {
        longest_ = std::max(longest_, sinceLastBeat_.nsecsElapsed());
        sinceLastBeat_.start();
    }

    QTimer timer_;
    QElapsedTimer sinceLastBeat_;
    qint64 longest_ = 0;
};

void spin(int milliseconds) {
    QTimer::singleShot(milliseconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

/// From the click that starts the search until the window has come to rest after it.
double longestStall(InstallerWindow& window) {
    auto* const next = window.findChild<QPushButton*>(QStringLiteral("next"));
    next->click();
    auto* const types = window.findChild<QWidget*>(QStringLiteral("radiobtnPrinterType"));
    spin(settleMilliseconds);
    Heart heart;
    heart.start();
    // From a timer, as a person's click comes from the event loop.
    QTimer::singleShot(0, types, [types] { types->findChildren<QRadioButton*>().at(1)->click(); });
    QElapsedTimer total;
    total.start();
    do {
        spin(settleMilliseconds);
    } while (!next->isEnabled() && total.elapsed() < maximumMilliseconds);
    spin(settleMilliseconds);
    return heart.longestMilliseconds();
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 4 || !qEnvironmentVariableIsSet("QUAZEL_PRIVATE_NETWORK")) {
        std::fputs("bench-stall FILE PLUGINS PRINTERS, in tools/private-network\n", stderr);
        return 2;
    }
    std::vector<InstallerPane*> pages{new IntroductionPane(prepareDocumentsFolder(), qApp)};
    const LoadedPages loaded = loadPages(QString::fromLocal8Bit(argv[2]), qApp);
    pages.insert(pages.end(), loaded.pages.begin(), loaded.pages.end());
    pages.push_back(new SummaryPane(qApp));
    InstallerWindow window(pages);
    window.show();
    spin(settleMilliseconds);
    const double stall = longestStall(window);
    const int printers = window.findChild<QComboBox*>(QStringLiteral("PrinterIP"))->count() - 1;
    if (printers != std::atoi(argv[3])) {
        std::fprintf(stderr, "bench-stall: the list has %d printers\n", printers);
        return 1;
    }
    std::FILE* const file = std::fopen(argv[1], "w");
    return file != nullptr && std::fprintf(file, "%.3f\n", stall) > 0 && std::fclose(file) == 0 ? 0 : 1;
}

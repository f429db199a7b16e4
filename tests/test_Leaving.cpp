// Closes the window, or ends the program by a signal, at each stage of a discovery; and checks many
// discoveries for leaks.

#include "Installer/InstallerWindow.h"
#include "Installer/TerminationSignals.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"

#include <QApplication>

#include <malloc.h>

#include <memory>

namespace {

const QString firstTask = u"\tGetPrinterIP\n"_s;  // Before the search; a task is waiting.
const QString search = u"\tBefore GetTovikQuazelPrinters\n"_s;
const QString firstProbe = u"\t**** 127.0.0.1\n"_s;             // While replies are collected.
const QString firstRequest = u"\tIP address is: 10.0.0.9\n"_s;  // While waiting for a device ID.
const QString lastTask = u"\tFound an Item: "_s;                // After the search; a task is waiting.

extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes();

/// The sanitizers replace the C library's allocator.
std::size_t allocatedBytes() {
    return __sanitizer_get_current_allocated_bytes != nullptr ? __sanitizer_get_current_allocated_bytes()
                                                              : ::mallinfo2().uordblks;
}

qsizetype countIn(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

}  // namespace

class TestLeaving : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QLoggingCategory::setFilterRules(u"quazel.page=false"_s);
        quitOnTerminationSignals();
    }

    void leavesDuringDiscovery() {
        const VirtualPrinters printers({u"10.0.0.9 silent"_s, u"10.0.0.10 silent"_s});
        for (const QString& record : {firstTask, firstProbe, firstRequest, lastTask}) {
            for (const bool isSignalled : {false, true}) {
                leave(record, isSignalled);
            }
        }
    }

    void discoveriesLeakNothing() {
        Timeout = 0;
        NetworkPrinterConfigPane pane;
        pane.awakeFromNib();
        const auto refresh = [&pane](int times) {
            for (int count = 0; count < times; ++count) {
                pane.RefreshButton()->click();
                while (!pane.isNextEnabled()) {
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                }
            }
        };
        refresh(20);  // One-time allocations.
        const qsizetype threads = countIn(u"/proc/self/task"_s);
        const qsizetype descriptors = countIn(u"/proc/self/fd"_s);
        const std::size_t bytes = allocatedBytes();
        refresh(200);
        QTRY_VERIFY(countIn(u"/proc/self/task"_s) <= threads);  // Qt may end one of its threads.
        QCOMPARE(countIn(u"/proc/self/fd"_s), descriptors);
        QCOMPARE_LT(allocatedBytes(), bytes + 200 * 32);  // 32 per search.
        Timeout = 1000;
    }

  private:
    /// Closes the window, or raises SIGTERM, once `record` was logged.
    void leave(const QString& record, bool isSignalled) {
        (void)takeLog(home_);
        auto* const page = new NetworkPrinterConfigPane;
        page->awakeFromNib();
        auto window = std::make_unique<InstallerWindow>(std::vector<InstallerPane*>{page});
        window->show();
        QCoreApplication::processEvents();
        QTest::mouseClick(page->radiobtnPrinterType()->cellAt(1, 0), Qt::LeftButton, {}, QPoint(5, 5));
        QTRY_VERIFY(record == firstTask || contentOf(home_.log()).contains(search.toUtf8()));
        while (!contentOf(home_.log()).contains(record.toUtf8())) {  // ctest limits how long.
            QTest::qSleep(5);
        }
        QTest::qSleep(50);  // So that what follows the record is under way.
        QElapsedTimer clock;
        clock.start();
        if (isSignalled) {
            std::raise(SIGTERM);
            QVERIFY(QApplication::exec() == 0);
        } else {
            window->close();
            QVERIFY(!window->isVisible() && clock.elapsed() < 500);  // Even if the search is running.
        }
        window.reset();
        QCoreApplication::processEvents();  // No event of the page may remain queued.
        // A waiting task must not be reported as run.
        QVERIFY(isSignalled || contentOf(home_.log()).contains(search.toUtf8()) == (record != firstTask));
        QCOMPARE_LT(clock.elapsed(), 2500);
    }

    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestLeaving, QApplication)

#include "test_Leaving.moc"

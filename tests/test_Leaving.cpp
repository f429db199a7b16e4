// Leaving in the middle of a discovery, in every way and at every point of it; and what many discoveries
// leave behind.

#include "Installer/InstallerWindow.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QPushButton>

#include <malloc.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString firstTask = u"\tGetPrinterIP\n"_s;  // Before the search, with a task waiting.
const QString search = u"\tBefore GetTovikQuazelPrinters\n"_s;
const QString firstProbe = u"\t**** 127.0.0.1\n"_s;              // While replies are collected.
const QString firstQuestion = u"\tIP address is: 10.0.0.9\n"_s;  // While a printer is silent.
const QString lastTask = u"\tFound an Item: "_s;                 // After the search, with a task waiting.

extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes();
qint64 allocatedBytes() {
    const bool isSanitized = __sanitizer_get_current_allocated_bytes != nullptr;
    return static_cast<qint64>(isSanitized ? __sanitizer_get_current_allocated_bytes()
                                           : ::mallinfo2().uordblks);
}

qsizetype countIn(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Waits for a record, and a moment longer, so that what follows it is under way.
void waitForRecord(const QString& log, const QString& record) {
    for (const QDeadlineTimer limit(20'000); !contentOf(log).contains(record.toUtf8()); QTest::qSleep(5)) {
        QVERIFY2(!limit.hasExpired(), qPrintable(record));
    }
    QTest::qSleep(50);
}

}  // namespace

class TestLeaving : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(u"quazel.page=false"_s); }

    void leaves() {
        const VirtualPrinters printers({u"10.0.0.9 silent"_s, u"10.0.0.10 silent"_s});
        for (const QString& record : {firstTask, firstProbe, firstQuestion, lastTask}) {
            for (const bool isProgram : {false, true}) {
                isProgram ? leaveProgram(record) : leaveWindow(record);
                const qint64 elapsed = clock_.elapsed();
                QVERIFY2(elapsed < 2500,
                         qPrintable(u"%1%2: %3 ms"_s.arg(record).arg(isProgram).arg(elapsed)));
            }
        }
    }

    void manyDiscoveriesLeaveNothingBehind() {
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
        refresh(20);  // What is made once.
        const qsizetype threads = countIn(u"/proc/self/task"_s);
        const qsizetype descriptors = countIn(u"/proc/self/fd"_s);
        const qint64 bytes = allocatedBytes();
        refresh(200);
        QTRY_VERIFY(countIn(u"/proc/self/task"_s) <= threads);  // Qt may end one of its own.
        QCOMPARE(countIn(u"/proc/self/fd"_s), descriptors);
        const qint64 growth = allocatedBytes() - bytes;
        QVERIFY2(growth < 200 * 32, qPrintable(u"%1 bytes"_s.arg(growth)));  // Less than any leak.
        Timeout = 1000;
    }

  private:
    void leaveWindow(const QString& record) {
        (void)takeLog(home_);
        auto* const page = new NetworkPrinterConfigPane;
        page->awakeFromNib();
        auto window = std::make_unique<InstallerWindow>(std::vector<InstallerPane*>{page});
        window->show();
        QCoreApplication::processEvents();
        QTest::mouseClick(page->radiobtnPrinterType()->cellAt(1, 0), Qt::LeftButton, {}, QPoint(5, 5));
        waitForRecord(home_.log(), firstTask);
        if (record != firstTask) {
            QTRY_VERIFY(contentOf(home_.log()).contains(search.toUtf8()));
            waitForRecord(home_.log(), record);
        }
        clock_.start();
        window->close();
        QVERIFY(!window->isVisible() && clock_.elapsed() < 500);  // Whatever still has to end.
        window.reset();
        QCoreApplication::processEvents();  // Nothing of the page may be left in the queue.
        // A task that was waiting is not told as run.
        QCOMPARE(contentOf(home_.log()).contains(search.toUtf8()), record != firstTask);
    }

    void leaveProgram(const QString& record) {
        (void)takeLog(home_);
        SpawnedProgram program(QStringLiteral(QUAZEL_BIN_DIR "/quazel-installer --plugins " QUAZEL_PLUGINS));
        waitForRecord(home_.log(), record);
        clock_.start();
        QCOMPARE(program.end(SIGTERM), 0);
    }

    TemporaryHome home_;
    QElapsedTimer clock_;  // Since the window or program was told to close.
};

QUAZEL_TEST_MAIN(TestLeaving, QApplication)

#include "test_Leaving.moc"

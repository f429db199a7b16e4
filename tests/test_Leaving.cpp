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

/// The main thread and the discovery's, by the program's name; Qt starts and names others as it likes.
qsizetype threads() {
    qsizetype count = 0;
    for (const QString& thread : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        count += contentOf(u"/proc/self/task/%1/comm"_s.arg(thread)) == contentOf(u"/proc/self/comm"_s);
    }
    return count;
}

/// Waits for a record, and a moment longer, so that what follows it is under way.
void waitForRecord(const QString& log, const QString& record, bool handlingEvents = false) {
    for (const QDeadlineTimer limit(20'000); !contentOf(log).contains(record.toUtf8()); QTest::qSleep(5)) {
        QVERIFY2(!limit.hasExpired(), qPrintable(record));
        if (handlingEvents) {
            QCoreApplication::processEvents();
        }
    }
    QTest::qSleep(50);
}

}  // namespace

class TestLeaving : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(u"quazel.page=false"_s); }

    void leaves_data() {
        QTest::addColumn<bool>("isProgram");
        QTest::addColumn<QString>("record");  // The point of the discovery.
        for (const QString& record : {firstTask, firstProbe, firstQuestion, lastTask}) {
            QTest::addRow("window: %s", qPrintable(record.simplified())) << false << record;
            QTest::addRow("program: %s", qPrintable(record.simplified())) << true << record;
        }
    }
    void leaves() {
        QFETCH(bool, isProgram);
        QFETCH(QString, record);
        QStringList silent;
        for (int host = 9; record != lastTask && host < 15; ++host) {
            silent += u"10.0.0.%1 silent"_s.arg(host);
        }
        const VirtualPrinters printers(silent);
        isProgram ? leaveProgram(record) : leaveWindow(record);
        QVERIFY2(clock_.elapsed() < 2500, qPrintable(u"%1 ms"_s.arg(clock_.elapsed())));
    }

    void manyDiscoveriesLeaveNothingBehind() {
        Timeout = 0;
        NetworkPrinterConfigPane pane;
        pane.awakeFromNib();
        const qsizetype threadsBefore = threads();
        const auto refresh = [&pane](int times) {
            for (int count = 0; count < times; ++count) {
                pane.RefreshButton()->click();
                while (!pane.isNextEnabled()) {
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                }
            }
        };
        refresh(20);  // What is made once.
        const qsizetype descriptors = countIn(u"/proc/self/fd"_s);
        const qint64 bytes = allocatedBytes();
        refresh(200);
        QTRY_COMPARE(threads(), threadsBefore);
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
            waitForRecord(home_.log(), search, true);
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
        const QTemporaryDir home;
        const QString plugins = home.filePath(u"plugins"_s);
        QDir().mkdir(plugins);
        QFile::link(QStringLiteral(QUAZEL_PAGE_PLUGIN), plugins + u"/page.so"_s);
        QFile::link(QStringLiteral(QUAZEL_USER_PLUGIN), plugins + u"/user.so"_s);
        SpawnedProgram program(u"env HOME=%1 "_s.arg(home.path()) +
                               u"" QUAZEL_BIN_DIR "/quazel-installer --plugins "_s + plugins);
        waitForRecord(home.filePath(u"Documents/QzInstall.log"_s), record);
        clock_.start();
        QCOMPARE(program.end(), 0);
    }

    TemporaryHome home_;
    QElapsedTimer clock_;  // Since the window or program was told to close.
};

QUAZEL_TEST_MAIN(TestLeaving, QApplication)

#include "test_Leaving.moc"

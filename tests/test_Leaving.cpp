// Leaving in the middle of a discovery, in every way and at every point of it; and what many discoveries
// leave behind.

#include "Installer/InstallerWindow.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <malloc.h>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestLeaving = 2500;              // ms
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

/// The discovery's threads and the main one, by the program's name; Qt starts and names others as it likes.
qsizetype threads() {
    qsizetype count = 0;
    for (const QString& thread : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        count += contentOf(u"/proc/self/task/%1/comm"_s.arg(thread)) == contentOf(u"/proc/self/comm"_s);
    }
    return count;
}

/// Waits for a record, and a moment longer, so that what follows it is under way.
bool waitForRecord(const QString& log, const QString& record, bool handlingEvents = false) {
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 10000; QTest::qSleep(5)) {
        if (contentOf(log).contains(record.toUtf8())) {
            QTest::qSleep(50);
            return true;
        }
        if (handlingEvents) {
            QCoreApplication::processEvents();
        }
    }
    return false;
}

}  // namespace

class TestLeaving : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { systemLog_.emplace(); }

    void leaves_data() {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("record");  // the point of the discovery
        for (const QString& way : {u"window"_s, u"program"_s}) {
            for (const QString& record : {firstTask, firstProbe, firstQuestion, lastTask}) {
                QTest::newRow(qPrintable(way + u':' + record.simplified())) << way << record;
            }
        }
    }
    void leaves() {
        QFETCH(QString, way);
        QFETCH(QString, record);
        QStringList silent;
        for (int host = 9; record != lastTask && host < 15; ++host) {
            silent += u"10.0.0.%1 silent"_s.arg(host);
        }
        const VirtualPrinters printers(silent);
        way == u"program"_s ? leaveProgram(record) : leaveWindow(record);
    }

    void manyDiscoveriesLeaveNothingBehind() {
        Timeout = 0;
        NetworkPrinterConfigPane pane;
        pane.awakeFromNib();
        const auto refresh = [&pane](int times) {
            for (int count = 0; count < times; ++count) {
                QTest::mouseClick(pane.RefreshButton(), Qt::LeftButton);
                while (!pane.isNextEnabled()) {
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                }
            }
        };
        refresh(20);       // What is made once.
        QTest::qWait(50);  // The last thread ends.
        const qsizetype threadsBefore = threads();
        const qsizetype descriptors = countIn(u"/proc/self/fd"_s);
        const qint64 bytes = allocatedBytes();
        refresh(200);
        QTRY_COMPARE(threads(), threadsBefore);
        QCOMPARE(countIn(u"/proc/self/fd"_s), descriptors);
        const qint64 growth = allocatedBytes() - bytes;
        QVERIFY2(growth < 200 * 32,
                 qPrintable(u"%1 bytes"_s.arg(growth)));  // Less than any leak.
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
        const qsizetype threadsBefore = threads();
        QTest::mouseClick(page->radiobtnPrinterType()->cellAt(1, 0), Qt::LeftButton, {}, QPoint(5, 5));
        QVERIFY(waitForRecord(home_.log(), firstTask));
        if (record != firstTask) {
            QVERIFY(waitForRecord(home_.log(), search, true));
            QVERIFY(waitForRecord(home_.log(), record));
        }
        QElapsedTimer clock;
        clock.start();
        window->close();
        QVERIFY(!window->isVisible());
        QVERIFY(clock.elapsed() < 200);  // The window is gone at once, whatever still has to end.
        window.reset();
        QVERIFY2(clock.elapsed() < longestLeaving, qPrintable(u"%1 ms"_s.arg(clock.elapsed())));
        QCoreApplication::processEvents();  // Nothing of the page may be left in the queue.
        QTRY_COMPARE(threads(), threadsBefore);
    }

    void leaveProgram(const QString& record) {
        const QTemporaryDir home;
        const QString plugins = home.filePath(u"plugins"_s);
        QVERIFY(QDir().mkdir(plugins));
        QVERIFY(QFile::link(QStringLiteral(QUAZEL_PAGE_PLUGIN), plugins + u"/page.so"_s));
        QVERIFY(QFile::link(QStringLiteral(QUAZEL_USER_PLUGIN), plugins + u"/user.so"_s));
        SpawnedProgram program(
            u"env HOME=%1 %2 --plugins %3"_s.arg(home.path(), programPath(u"quazel-installer"_s), plugins));
        QVERIFY(waitForRecord(home.filePath(u"Documents/QzInstall.log"_s), record));
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(program.terminate(), 0);
        QVERIFY2(clock.elapsed() < longestLeaving, qPrintable(u"%1 ms"_s.arg(clock.elapsed())));
    }

    TemporaryHome home_;
    std::optional<SystemLogCapture> systemLog_;
};

QUAZEL_TEST_MAIN(TestLeaving, QApplication)

#include "test_Leaving.moc"

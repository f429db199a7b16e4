// The way from the discovery thread to the main thread: in order, and never into a page that is gone.

#include "platform/MainThreadGate.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;

class TestMainThreadGate : public QObject {
    Q_OBJECT

  private slots:
    void runsTasksInOrderOnTheMainThread() {
        MainThreadGate gate;
        std::string order;
        std::atomic<bool> done = false;
        const std::jthread worker([&] {
            for (const char task : {'a', 'b', 'c'}) {
                const bool ran = gate.runAndWait([&order, task] {
                    order += task;
                    order += QThread::currentThread() == qApp->thread() ? '+' : '-';
                });
                order += ran ? ',' : '!';  // Not before the task has run.
            }
            done = true;
        });
        QTRY_VERIFY(done);
        QCOMPARE(order, std::string("a+,b+,c+,"));
    }

    void aClosedGateRunsNothing() {
        auto gate = std::make_unique<MainThreadGate>();
        std::atomic<bool> ran = false;
        std::atomic<int> refusals = 0;
        // A task that is queued as the gate closes, and one that comes later.
        std::jthread worker([&] {
            refusals += gate->runAndWait([&] { ran = true; }) ? 0 : 1;
            refusals += gate->runAndWait([&] { ran = true; }) ? 0 : 1;
        });
        std::this_thread::sleep_for(50ms);  // The main thread is busy.
        QCOMPARE(refusals, 0);
        gate->close();
        for (int tenths = 0; tenths < 20 && refusals < 2; ++tenths) {
            std::this_thread::sleep_for(100ms);  // Without the event loop's help.
        }
        if (refusals != 2) {
            qFatal("the thread still waits, or was told that its task ran");
        }
        worker.join();
        gate.reset();
        QCoreApplication::processEvents();  // What was queued went with the gate.
        QVERIFY(!ran);
    }
};

QUAZEL_TEST_MAIN(TestMainThreadGate, QCoreApplication)

#include "test_MainThreadGate.moc"

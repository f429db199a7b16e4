// The way from the discovery thread to the main thread: in order, and never into a page that is gone.

#include "platform/MainThreadGate.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>

#include <atomic>
#include <optional>
#include <thread>

using namespace std::chrono_literals;

class TestMainThreadGate : public QObject {
    Q_OBJECT

  private slots:
    void runsTasksInOrderOnTheMainThread() {
        MainThreadGate gate;
        std::string order;
        std::atomic<bool> done = false;
        bool allRan = true;
        std::thread worker([&] {
            for (const char task : {'a', 'b', 'c'}) {
                allRan &= gate.runAndWait([&order, task] {
                    order += task;
                    order += QThread::currentThread() == qApp->thread() ? '+' : '-';
                });
                order += ',';  // Not before the task has run.
            }
            done = true;
        });
        QTRY_VERIFY(done);
        worker.join();
        QCOMPARE(order, std::string("a+,b+,c+,"));
        QVERIFY(allRan);
    }

    void aClosedGateRunsNothing_data() {
        QTest::addColumn<bool>("closedWhileWaiting");
        QTest::newRow("closed before") << false;
        QTest::newRow("closed while the task waits") << true;
    }
    void aClosedGateRunsNothing() {
        QFETCH(bool, closedWhileWaiting);
        auto gate = std::make_unique<MainThreadGate>();
        std::atomic<bool> ran = false;
        std::atomic<bool> answered = false;
        bool answer = true;
        if (!closedWhileWaiting) {
            gate->close();
        }
        std::thread worker([&] {
            answer = gate->runAndWait([&] { ran = true; });
            answered = true;
        });
        if (closedWhileWaiting) {
            std::this_thread::sleep_for(50ms);  // The main thread is busy: the task stays queued.
            QVERIFY(!answered);
            gate->close();
        }
        for (int tenths = 0; tenths < 20 && !answered; ++tenths) {
            std::this_thread::sleep_for(100ms);  // Without the event loop's help.
        }
        if (!answered) {
            qFatal("the thread still waits");
        }
        worker.join();
        QVERIFY(!answer);
        gate.reset();
        QCoreApplication::processEvents();  // What was queued went with the gate.
        QVERIFY(!ran);
    }
};

QUAZEL_TEST_MAIN(TestMainThreadGate, QCoreApplication)

#include "test_MainThreadGate.moc"

// The window, apart from what a user does with it and the page (test_InputPaths).

#include "Installer/InstallerWindow.h"
#include "Installer/SummaryPane.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Lets the user go, and counts how often.
struct Page : InstallerPane {
    Page() { setContentWidget(new QLineEdit); }

    [[nodiscard]] QString title() const override { return u"Page"_s; }
    [[nodiscard]] bool shouldExitPane(InstallerDirection /*direction*/) override {
        ++departures;
        whileDeciding();
        return true;
    }

    int departures = 0;
    std::function<void()> whileDeciding = [] {};
};

}  // namespace

class TestInstallerWindow : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { QApplication::setDoubleClickInterval(400); }

    void ignoresClicksThatCantCount() {
        auto* const page = new Page;
        InstallerWindow window({page, new Page, new Page});
        auto* const next = window.findChild<QPushButton*>(u"next"_s);
        page->setNextEnabled(false);
        emit next->clicked();  // As by a deferred click, enabled or not.
        QCOMPARE(page->departures, 0);
        page->setNextEnabled(true);
        page->whileDeciding = [=] { next->click(); };  // In an event loop of the page's own.
        next->click();
        QCOMPARE(page->departures, 1);
    }

    /// What counts is when the button was pressed, not when a busy page left time to handle it.
    void countsPressesByTheirOwnTime() {
        auto* const first = new Page;
        auto* const second = new Page;
        first->whileDeciding = [] { QTest::qSleep(500); };
        InstallerWindow window({first, second, new Page});
        const auto secondLeftAfterPressAt = [&](quint64 time) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {}, u"\r"_s);
            press.setTimestamp(time);
            QApplication::sendEvent(window.findChild<QPushButton*>(u"next"_s), &press);
            return second->departures;
        };
        QCOMPARE(secondLeftAfterPressAt(1000), 0);
        QCOMPARE(secondLeftAfterPressAt(1100), 0);
        QCOMPARE(secondLeftAfterPressAt(1500), 1);
    }

    /// The second press of a double click is there before the first release has been dealt with.
    void knowsADoubleClickThatComesAtOnce() {
        auto* const second = new Page;
        InstallerWindow window({new Page, second, new Page});
        auto* const next = window.findChild<QPushButton*>(u"next"_s);
        const auto send = [&](QEvent::Type type, quint64 time) {
            QMouseEvent event(type, QPointF(5, 5), next->mapToGlobal(QPointF(5, 5)), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
            event.setTimestamp(time);
            QApplication::sendEvent(next, &event);
        };
        send(QEvent::MouseButtonPress, 1000);
        send(QEvent::MouseButtonRelease, 1050);
        send(QEvent::MouseButtonPress, 1100);
        QCoreApplication::processEvents();
        send(QEvent::MouseButtonRelease, 1150);
        QCOMPARE(second->departures, 0);
    }

    void summaryTellsWhatIsHandedOn() {
        const TemporaryHome home;
        writeFile(home.selectionFile(), "KV260 10.0.0.5");
        SummaryPane summary;
        summary.didEnterPane(InstallerDirectionForward);
        const auto* const text = summary.contentWidget()->findChild<QLabel*>(u"summary"_s);
        QVERIFY(text->text().contains(u"Model:\tKV260\nAddress:\t10.0.0.5"_s));
    }
};

QUAZEL_TEST_MAIN(TestInstallerWindow, QApplication)

#include "test_InstallerWindow.moc"

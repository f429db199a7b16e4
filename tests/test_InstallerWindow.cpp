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

/// Takes its time to let the user go, and counts how often.
struct Page : InstallerPane {
    Page() { setContentWidget(new QLineEdit); }

    [[nodiscard]] QString title() const override { return u"Page"_s; }
    [[nodiscard]] bool shouldExitPane(InstallerDirection /*direction*/) override {
        ++departures;
        QTest::qSleep(2 * QApplication::doubleClickInterval());
        return true;
    }

    int departures = 0;
};

}  // namespace

class TestInstallerWindow : public QObject {
    Q_OBJECT

  private slots:
    /// A page may refuse between a press and its click.
    void looksWhetherAButtonIsEnabled() {
        auto* const page = new Page;
        InstallerWindow window({page, new Page});
        window.findChild<QPushButton*>(u"next"_s)->animateClick();  // Clicks after 100 ms, enabled or not.
        page->setNextEnabled(false);
        QTest::qWait(150);
        QCOMPARE(page->departures, 0);
    }

    /// What counts is when the button was pressed, not when a busy page left time to handle it.
    void countsPressesByTheirOwnTime() {
        auto* const second = new Page;
        InstallerWindow window({new Page, second, new Page});
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
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

// The window that goes from page to page: who decides, what the keys do, when the buttons may be pressed.

#include "Installer/InstallerWindow.h"
#include "Installer/StepList.h"
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

/// Notes its calls, and lets the user go as it was told.
struct Page : InstallerPane {
    Page(const QString& name, QStringList& calls) : name_(name), calls_(calls) {
        setContentWidget(new QLineEdit);
    }

    [[nodiscard]] QString title() const override { return name_; }
    void didEnterPane(InstallerDirection direction) override {
        calls_ += name_ + u" entered %1"_s.arg(direction);
    }
    [[nodiscard]] bool shouldExitPane(InstallerDirection direction) override {
        calls_ += name_ + u" left %1"_s.arg(direction);
        whileDeciding_();
        return letsGo_;
    }

    const QString name_;
    QStringList& calls_;
    bool letsGo_ = true;
    std::function<void()> whileDeciding_ = [] {};
};

}  // namespace

class TestInstallerWindow : public QObject {
    Q_OBJECT

  private slots:
    void pagesDecide() {
        QStringList calls;
        auto* const first = new Page(u"first"_s, calls);
        auto* const second = new Page(u"second"_s, calls);
        InstallerWindow window({first, second, new Page(u"last"_s, calls)});
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto* const next = window.findChild<QPushButton*>(u"next"_s);
        auto* const back = window.findChild<QPushButton*>(u"back"_s);
        const auto steps = [&] {
            QStringList names;
            for (const auto* const label : window.findChild<StepList*>()->findChildren<QLabel*>()) {
                names += label->accessibleName();
            }
            return names.filter(u", "_s).join(u" | "_s);
        };
        const auto take = [&] { return std::exchange(calls, {}).join(u", "_s); };
        QCOMPARE(steps(), u"first, current step | second, still to come | last, still to come"_s);
        QCOMPARE(take(), u"first entered 0"_s);
        QVERIFY(!back->isEnabled() && next->isDefault());

        QTest::keyClick(window.focusWidget(), Qt::Key_Return);  // In the page's own field.
        QCOMPARE(take(), u"first left 0, second entered 0"_s);
        QCOMPARE(window.findChild<QLabel*>(u"heading"_s)->text(), u"second"_s);
        QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
        QVERIFY(window.isVisible());

        second->setNextEnabled(false);
        second->setPreviousEnabled(false);
        QVERIFY(!next->isEnabled() && !back->isEnabled());
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
        first->setNextEnabled(false);  // Not the page that is shown.
        second->setNextEnabled(true);
        next->animateClick();  // Clicks after 100 ms, enabled or not.
        second->setNextEnabled(false);
        QTest::qWait(150);
        second->setNextEnabled(true);
        second->setPreviousEnabled(true);
        QVERIFY(next->isEnabled() && back->isEnabled());
        first->setNextEnabled(true);
        QCOMPARE(take(), QString());

        second->letsGo_ = false;
        second->whileDeciding_ = [&] { next->click(); };  // From an event loop of the page's own.
        QTest::mouseClick(next, Qt::LeftButton);
        QTest::mouseClick(back, Qt::LeftButton);
        QCOMPARE(take(), u"second left 0, second left 1"_s);
        QCOMPARE(steps(), u"first, done | second, current step | last, still to come"_s);

        second->letsGo_ = true;
        QTest::mouseClick(back, Qt::LeftButton);
        QTest::mouseClick(next, Qt::LeftButton);
        QTest::mouseClick(next, Qt::LeftButton);
        QCOMPARE(
            take(),
            u"second left 1, first entered 1, first left 0, second entered 0, second left 0, last entered 0"_s);
        QCOMPARE(next->text(), u"&Close"_s);
        QCOMPARE(steps(), u"first, done | second, done | last, current step"_s);
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
        QVERIFY(!window.isVisible());
    }

    /// What counts is when the button was pressed, not when a busy page left time to handle it.
    void countsPressesByTheirOwnTime() {
        QStringList calls;
        auto* const first = new Page(u"first"_s, calls);
        first->whileDeciding_ = [] { QTest::qSleep(2 * QApplication::doubleClickInterval()); };
        InstallerWindow window(
            {first, new Page(u"second"_s, calls), new Page(u"third"_s, calls), new Page(u"last"_s, calls)});
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto* const next = window.findChild<QPushButton*>(u"next"_s);
        const auto leftAfterPressAt = [&](quint64 time) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {}, u"\r"_s);
            press.setTimestamp(time);
            QApplication::sendEvent(next, &press);
            return calls.filter(u"left"_s).join(u'|');
        };
        QCOMPARE(leftAfterPressAt(1000), u"first left 0"_s);
        QCOMPARE(leftAfterPressAt(1100), u"first left 0"_s);
        QCOMPARE(leftAfterPressAt(1500), u"first left 0|second left 0"_s);
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

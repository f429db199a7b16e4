// What may be typed and pasted into the address field.

#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "support/PageFixtures.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>

class TestOnlyIntegerValueFormatter : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        field_ = std::make_unique<TextField>();
        field_->setFormatter(new OnlyIntegerValueFormatter);
        field_->show();
    }

    void edits_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("typed");   // "\b" is the backspace key
        QTest::addColumn<QString>("pasted");  // over a selection of everything that is there
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("beeps");
        const auto add = [](const char* name, const char* before, const char* typed, const char* pasted,
                            const char* after, int beeps) {
            const auto text = [](const char* bytes) { return QString::fromUtf8(bytes); };
            QTest::newRow(name) << text(before) << text(typed) << text(pasted) << text(after) << beeps;
        };
        add("an address", "", "192.168.1.40", "", "192.168.1.40", 0);
        add("partial texts", "", "1..2...", "", "1..2...", 0);
        add("the longest one fits, one more does not", "255.255.255.25", "51", "", "255.255.255.255", 1);
        add("other characters, a beep each", "10", "a ,-:x", "", "10", 6);
        add("emptied by key", "10", "\b\b", "", "", 0);
        add("a good paste replaces", "10.0.0.5", "", "10.0.0.77", "10.0.0.77", 0);
        add("a blank refuses the whole paste", "10.0.0.5", "", "10.0.0.7 ", "10.0.0.5", 1);
        add("too long and wrong beeps once", "1", "", "aaaaaaaaaaaaaaaaaaaa", "1", 1);
        add("16 characters", "1", "", "255.255.255.2555", "1", 1);
        add("digits of another script", "1", "", "\u0661", "1", 1);
    }
    void edits() {
        QFETCH(QString, before);
        QFETCH(QString, typed);
        QFETCH(QString, pasted);
        BeepCounter beeps;
        field_->setStringValue(before);
        QCOMPARE(beeps.take(), 0);
        for (const QChar character : typed) {
            QTest::keyClick(field_.get(), character.toLatin1());
        }
        if (!pasted.isEmpty()) {
            QApplication::clipboard()->setText(pasted);
            QTest::keySequence(field_.get(), QKeySequence::SelectAll);
            QTest::keySequence(field_.get(), QKeySequence::Paste);
        }
        QTEST(field_->stringValue(), "after");
        QTEST(beeps.take(), "beeps");
    }

    void neverOffersAReplacement() {
        const BeepCounter beeps;
        const OnlyIntegerValueFormatter formatter;
        for (const auto& [text, isLeft] :
             {std::pair("", true), std::pair("1", false), std::pair("a", false)}) {
            QString replacement = QStringLiteral("kept");
            QString error = QStringLiteral("kept");
            (void)formatter.isPartialStringValid(QString::fromLatin1(text), &replacement, &error);
            QCOMPARE(!replacement.isNull(), isLeft);
            QCOMPARE(!error.isNull(), isLeft);
        }
    }

    void returnEndsEditingOfAPartialAddress() {
        QSignalSpy ended(field_.get(), &TextField::didEndEditing);
        QTest::keyClicks(field_.get(), QStringLiteral("1."));
        QTest::keyClick(field_.get(), Qt::Key_Return);
        QCOMPARE(ended.count(), 1);
    }

  private:
    std::unique_ptr<TextField> field_;
};

QUAZEL_TEST_MAIN(TestOnlyIntegerValueFormatter, QApplication)

#include "test_OnlyIntegerValueFormatter.moc"

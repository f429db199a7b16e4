// What may be typed and pasted into the address field.

#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "support/PageFixtures.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class TestOnlyIntegerValueFormatter : public QObject {
    Q_OBJECT

  private slots:
    void edits_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("typed");   // "\b" is the backspace key, "\r" is Return
        QTest::addColumn<QString>("pasted");  // over a selection of everything that is there
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("beeps");
        const QString none;
        const QString address = u"10.0.0.5"_s;
        QTest::newRow("address") << none << u"192.168.1.40"_s << none << u"192.168.1.40"_s << 0;
        QTest::newRow("partial, Return") << none << u"1..2...\r"_s << none << u"1..2..."_s << 0;
        QTest::newRow("longest, and more")
            << u"255.255.255.25"_s << u"51"_s << none << u"255.255.255.255"_s << 1;
        QTest::newRow("a beep for each other") << u"10"_s << u"a ,-:x"_s << none << u"10"_s << 6;
        QTest::newRow("emptied by key") << u"10"_s << u"\b\b"_s << none << none << 0;
        QTest::newRow("a good paste replaces") << address << none << u"10.0.0.77"_s << u"10.0.0.77"_s << 0;
        QTest::newRow("a blank refuses a paste") << address << none << u"10.0.0.7 "_s << address << 1;
        QTest::newRow("long and wrong, one beep") << address << none << QString(20, u'a') << address << 1;
        QTest::newRow("16 characters") << address << none << u"255.255.255.2555"_s << address << 1;
        QTest::newRow("digits of another script") << address << none << u"\u0661"_s << address << 1;
    }
    void edits() {
        QFETCH(QString, before);
        QFETCH(QString, typed);
        QFETCH(QString, pasted);
        BeepCounter beeps;
        TextField field;
        field.setFormatter(new OnlyIntegerValueFormatter);
        field.show();
        const QSignalSpy ended(&field, &TextField::didEndEditing);
        field.setStringValue(before);
        for (const QChar character : typed) {
            QTest::keyClick(&field, character.toLatin1());
        }
        if (!pasted.isEmpty()) {
            QApplication::clipboard()->setText(pasted);
            QTest::keySequence(&field, QKeySequence::SelectAll);
            QTest::keySequence(&field, QKeySequence::Paste);
        }
        QTEST(field.stringValue(), "after");
        QTEST(beeps.take(), "beeps");
        QCOMPARE(ended.count(), typed.count(u'\r'));
    }
};

QUAZEL_TEST_MAIN(TestOnlyIntegerValueFormatter, QApplication)

#include "test_OnlyIntegerValueFormatter.moc"

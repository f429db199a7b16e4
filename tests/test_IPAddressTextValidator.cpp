// Which texts count as an address when the person presses Continue.

#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "support/TestMain.h"

#include <QTest>
#include <QUrl>

class TestIPAddressTextValidator : public QObject {
    Q_OBJECT

  private slots:
    void validates_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        const auto add = [](bool valid, std::initializer_list<const char16_t*> texts) {
            for (const char16_t* const text : texts) {
                const QString string = QString::fromUtf16(text);
                QTest::newRow(QUrl::toPercentEncoding(string)) << string << valid;
            }
        };
        QTest::newRow("null") << QString() << false;
        add(true, {u"", u"0.0.0.0", u"255.255.255.255", u"192.168.001.010", u"00.0.099.199"});
        add(false, {u"256.1.1.1", u"1.2.3.260", u"1000.1.1.1", u"1.2.3", u"1.2.3.4.5", u"1.2.3.", u"1..2.3",
                    u"1a2a3a4", u"1.2.3.4a", u" 1.2.3.4", u"1.2.3.4 ", u"1.2.3.\u0664"});
        // The end anchor also stands before one line end of any kind, which other engines do not do.
        add(true, {u"1.2.3.4\n", u"1.2.3.4\r", u"1.2.3.4\r\n", u"1.2.3.4\u0085", u"1.2.3.4\u2028",
                   u"1.2.3.4\u2029"});
        add(false, {u"1.2.3.4\n\n", u"1.2.3.4\n\r", u"1.2.3.4\u2028\n", u"\n1.2.3.4", u"1.2.3.4\n1.2.3.4"});
    }
    void validates() {
        QFETCH(QString, text);
        QTEST(IPAddressTextValidator().validate(text), "valid");
    }
};

QUAZEL_TEST_MAIN(TestIPAddressTextValidator, QCoreApplication)

#include "test_IPAddressTextValidator.moc"

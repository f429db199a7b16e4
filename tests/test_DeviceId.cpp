// The device id in a reply: found, cut and split, whatever the bytes around it are.

#include "discovery/DeviceId.h"
#include "support/TestMain.h"

#include <QTest>

namespace {

std::optional<DeviceIdText> find(const QByteArray& reply) {
    return findDeviceIdText(std::span(reply.constData(), static_cast<std::size_t>(reply.size())));
}

}  // namespace

class TestDeviceId : public QObject {
    Q_OBJECT

  private slots:
    void findsTheText_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("text");
        const QByteArray none = "none";
        const QByteArray key = "MFG:";
        const QByteArray longest = key + QByteArray(251, 'x');
        QTest::newRow("nothing") << QByteArray() << none;
        QTest::newRow("three bytes of the key") << QByteArray("MFG") << none;
        QTest::newRow("the key alone") << key << key;
        QTest::newRow("no key") << QByteArray(1024, 'M') << none;
        QTest::newRow("ends at a zero byte") << QByteArray("\0MFG:a\0b", 8) << key + "a";
        QTest::newRow("the first of two") << "x" + key + "a;MFG:b" << key + "a;MFG:b";
        QTest::newRow("255 bytes fit") << longest << longest;
        QTest::newRow("256 bytes do not") << longest + 'x' << none;
        QTest::newRow("the end of a full datagram") << QByteArray(1020, '\xff') + key << key;
    }
    void findsTheText() {
        QFETCH(QByteArray, reply);
        const auto found = find(reply);
        QTEST(QByteArray(found ? found->data() : "none"), "text");
    }

    void splitsFields_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArrayList>("fields");
        const auto row = [](const char* name, const QByteArray& text, const QByteArrayList& fields) {
            QTest::newRow(name) << text << fields;
        };
        row("complete", "MFG:Tovik;CMD:X;MDL:TVK KV260N;CLS:PRINTER;DES:a b;SERN:A1;",
            {"Tovik", "X", "TVK KV260N", "PRINTER", "a b", "A1;"});
        row("serial number ends at white space", "MFG:T;CMD:X;MDL:M;CLS:P;DES:D;SERN:A1 B2",
            {"T", "X", "M", "P", "D", "A1"});
        row("another order", "MFG:T;MDL:KV210;CMD:X", {"T", "", "", "", "", ""});
        row("an empty value ends it", "MFG:T;CMD:;MDL:M", {"T", "", "", "", "", ""});
        const QByteArray x(66, 'x');
        row("long fields are cut and lose nothing behind them",
            "MFG:" + x.left(31) + ";CMD:" + x.left(21) + ";MDL:" + x.left(21) + ";CLS:" + x.left(20) +
                ";DES:" + x.left(51) + ";SERN:" + x,
            {x.left(29), x.left(19), x.left(19), x.left(19), x.left(49), x.left(65)});
    }
    void splitsFields() {
        QFETCH(QByteArray, text);
        const PrinterInfo info = parseDeviceId(find(text).value());
        QTEST(QByteArrayList({info.szManufacturer, info.szPrinterCommands, info.szModel, info.szPrinterClass,
                              info.szDescription, info.szSerialNumber}),
              "fields");
    }
};

QUAZEL_TEST_MAIN(TestDeviceId, QCoreApplication)

#include "test_DeviceId.moc"

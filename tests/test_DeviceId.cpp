// The device id in a reply: found, cut and split, whatever the bytes around it are.

#include "discovery/DeviceId.h"
#include "support/TestMain.h"

#include <QTest>

namespace {

std::optional<DeviceIdText> find(const QByteArray& reply) {
    return findDeviceIdText(std::span(reply.constData(), static_cast<std::size_t>(reply.size())));
}

PrinterInfo parse(const QByteArray& text) {
    return parseDeviceId(find(text).value());
}

}  // namespace

class TestDeviceId : public QObject {
    Q_OBJECT

  private slots:
    void findsTheText_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("text");  // null: not found
        const QByteArray longest = "MFG:" + QByteArray(251, 'x');
        QTest::newRow("nothing") << QByteArray() << QByteArray();
        QTest::newRow("three bytes of the key") << QByteArray("MFG") << QByteArray();
        QTest::newRow("the key alone") << QByteArray("MFG:") << QByteArray("MFG:");
        QTest::newRow("the key at the very end") << QByteArray("\x30\x82MFG:", 6) << QByteArray("MFG:");
        QTest::newRow("no key") << QByteArray(1024, 'M') << QByteArray();
        QTest::newRow("ends at a zero byte") << QByteArray("\0MFG:a\0b", 8) << QByteArray("MFG:a");
        QTest::newRow("the first of two") << QByteArray("xMFG:a;MFG:b") << QByteArray("MFG:a;MFG:b");
        QTest::newRow("255 bytes fit") << longest << longest;
        QTest::newRow("256 bytes do not") << longest + 'x' << QByteArray();
        QTest::newRow("the end of a full datagram")
            << QByteArray(1020, '\xff') + "MFG:" << QByteArray("MFG:");
    }
    void findsTheText() {
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, text);
        const auto found = find(reply);
        QCOMPARE(found.has_value(), !text.isNull());
        if (found) {
            QCOMPARE(QByteArray(found->data()), text);
        }
    }

    void splitsFields_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArrayList>("fields");
        using List = QByteArrayList;
        QTest::newRow("complete") << QByteArray("MFG:Tovik;CMD:X;MDL:TVK KV260N;CLS:PRINTER;DES:a b;SERN:A1;")
                                  << List{"Tovik", "X", "TVK KV260N", "PRINTER", "a b", "A1;"};
        QTest::newRow("serial number ends at white space")
            << QByteArray("MFG:T;CMD:X;MDL:M;CLS:P;DES:D;SERN:A1 B2") << List{"T", "X", "M", "P", "D", "A1"};
        QTest::newRow("another order")
            << QByteArray("MFG:T;MDL:KV210;CMD:X") << List{"T", "", "", "", "", ""};
        QTest::newRow("an empty value ends it")
            << QByteArray("MFG:T;CMD:;MDL:M") << List{"T", "", "", "", "", ""};
        QTest::newRow("the key alone") << QByteArray("MFG:") << List{"", "", "", "", "", ""};
        QTest::newRow("long fields are cut and lose nothing behind them")
            << "MFG:" + QByteArray(31, 'm') + ";CMD:" + QByteArray(21, 'c') + ";MDL:" + QByteArray(21, 'd') +
                   ";CLS:" + QByteArray(20, 'l') + ";DES:" + QByteArray(51, 'e') +
                   ";SERN:" + QByteArray(66, 's')
            << List{QByteArray(29, 'm'), QByteArray(19, 'c'), QByteArray(19, 'd'),
                    QByteArray(19, 'l'), QByteArray(49, 'e'), QByteArray(65, 's')};
    }
    void splitsFields() {
        QFETCH(QByteArray, text);
        QFETCH(QByteArrayList, fields);
        const PrinterInfo info = parse(text);
        const QByteArrayList found{info.szManufacturer, info.szPrinterCommands, info.szModel,
                                   info.szPrinterClass, info.szDescription,     info.szSerialNumber};
        QCOMPARE(found, fields);
    }
};

QUAZEL_TEST_MAIN(TestDeviceId, QCoreApplication)

#include "test_DeviceId.moc"

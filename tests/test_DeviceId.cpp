// The device id in a reply: found, cut and split, whatever the bytes around it are; and which model texts in
// it are the series'.

#include "discovery/DeviceId.h"
#include "discovery/ModelCatalog.h"
#include "support/TestMain.h"

class TestDeviceId : public QObject {
    Q_OBJECT

  private slots:
    void findsAndSplits_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("fields");
        const auto row = [](const char* name, const QByteArray& reply, const QByteArray& fields) {
            QTest::newRow(name) << reply << fields;
        };
        row("ends at a zero byte", QByteArray("\0MFG:a\0b", 8), "a|||||");
        row("255 bytes fit", "MFG:" + QByteArray(251, 'x'), QByteArray(29, 'x') + "|||||");
        row("256 bytes do not", "MFG:" + QByteArray(252, 'x'), "none");
        row("serial number ends at white space", "MFG:T;CMD:X;MDL:M;CLS:P;DES:a b;SERN:A1; B2",
            "T|X|M|P|a b|A1;");
        row("another order", "MFG:T;MDL:KV210;CMD:X", "T|||||");
        row("an empty value ends it", "MFG:T;CMD:;MDL:M", "T|||||");
        const QByteArray x(66, 'x');
        row("long fields are cut and lose nothing behind them",
            "MFG:T;CMD:" + x.left(21) + ";MDL:" + x.left(21) + ";CLS:" + x.left(20) + ";DES:" + x.left(51) +
                ";SERN:" + x,
            "T|" + x.left(19) + '|' + x.left(19) + '|' + x.left(19) + '|' + x.left(49) + '|' + x.left(65));
    }
    void findsAndSplits() {
        QFETCH(QByteArray, reply);
        const auto text = findDeviceIdText({reply.constData(), static_cast<std::size_t>(reply.size())});
        QByteArray fields = "none";
        if (text) {
            const PrinterInfo info = parseDeviceId(*text);
            fields = QByteArrayList{info.szManufacturer, info.szPrinterCommands, info.szModel,
                                    info.szPrinterClass, info.szDescription,     info.szSerialNumber}
                         .join('|');
        }
        QTEST(fields, "fields");
    }

    void knowsTheModels() {
        for (const QByteArray model : {"KV210", "KV260", "KV410", "KV460"}) {
            for (const QByteArray& text : {"TVK " + model, "TVK " + model + "N", model, model + "N"}) {
                QVERIFY2(IsQuazel(text), text);
                QCOMPARE(modelNameOfAcceptedText(text), model);
            }
        }
        for (const char* const text : {"", "kv210", "KV210 ", "KV210NN", "TVK", "KV220"}) {
            QVERIFY2(!IsQuazel(text), text);
        }
    }
};

QUAZEL_TEST_MAIN(TestDeviceId, QCoreApplication)

#include "test_DeviceId.moc"

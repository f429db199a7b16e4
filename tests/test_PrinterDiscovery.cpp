// Whole runs against a subnet of printers: what goes out byte for byte, what is found, and the log record by
// record.

#include "discovery/PrinterDiscovery.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const QString manualEntry = QStringLiteral("Enter IP Address Manually\n");

/// The network of the tests has two local addresses; the system tells in which order they are probed.
constexpr int localAddresses = 2;

// The messages as they stand in RFC 1157's encoding, with the community "public".
const QString probe = QStringLiteral(
    "224.0.0.1 "
    "3024"
    "020100"
    "04067075626c6963"
    "a117"
    "020101"
    "020100"
    "020100"
    "300c300a"
    "06062b060102012b"
    "0500");
const QString deviceIdRequest = QStringLiteral(
    "302d"
    "020100"
    "04067075626c6963"
    "a020"
    "020102"
    "020100"
    "020100"
    "30153013"
    "060f2b06010401950b0102010201010301"
    "0500");

struct Printer {
    QString line;   ///< What it does, as the virtual printers take it, without the address.
    QString model;  ///< The model name it is found under; null for one that is not.
    QStringList
        log;  ///< What the log has after its address; of a printer that is found, "Count" has no number.
    int replies = 1;
};

Printer found(const QString& line, const char* model, const char* reported, const char* maker = "Tovik") {
    const QString text = QLatin1String(reported);
    return {line, QLatin1String(model),
            QStringList{QStringLiteral("Response is ") + text, QStringLiteral("Count Inside Is %1")} +
                (QStringLiteral("Printer manufacture is ") + QString::fromUtf8(maker)).split(u'\n') +
                QStringList{QStringLiteral("Printer modal is ") + text}};
}

Printer notFound(const QString& line, const QStringList& log = {}) {
    return {line, QString(), log};
}

Printer raw(Printer printer, const QByteArray& reply) {
    printer.line =
        QStringLiteral("raw ") + (reply.isEmpty() ? QStringLiteral("-") : QString::fromLatin1(reply.toHex()));
    return printer;
}

QByteArray idOfSize(int size) {
    const QByteArray start = "MFG:Tovik;CMD:X;MDL:KV210;CLS:PRINTER;DES:d;SERN:";
    return start + QByteArray(size - start.size(), 's');
}

const QByteArray id = deviceId(QStringLiteral("KV410")).toLatin1();
const QStringList timedOut{QStringLiteral("Cant able to receive anything Resource temporarily unavailable")};

const std::vector<Printer> printers{
    found(QStringLiteral("answers ") + deviceId(QStringLiteral("TVK KV260N")), "KV260", "TVK KV260N"),
    {QStringLiteral("twice ") + deviceId(QStringLiteral("KV210")), QStringLiteral("KV210"),
     found({}, "", "KV210").log, 2},
    notFound(QStringLiteral("answers MFG:Other;CMD:X;MDL:LP1;CLS:PRINTER;DES:x;SERN:1")),
    notFound(QStringLiteral("answers MFG:Tovik;CMD:X;MDL:kv210;CLS:PRINTER;DES:x;SERN:1")),
    notFound(QStringLiteral("silent"), timedOut),
    found(QStringLiteral("late 300 ") + deviceId(QStringLiteral("KV460N")), "KV460", "KV460N"),
    notFound(QStringLiteral("late 1200 ") + deviceId(QStringLiteral("KV460N")), timedOut),
    // Keys in another order.
    notFound(QStringLiteral("answers CMD:X;MFG:Tovik;MDL:KV210;CLS:PRINTER;DES:x;SERN:1")),
    notFound(QStringLiteral("answers MFG:Tovik;MDL:KV210;CMD:X;CLS:PRINTER;DES:x;SERN:1")),
    // A maker that would be a format or a record, were it taken for one.
    raw(found({}, "KV410", "KV410", "100%n%s\nvik"), "MFG:100%n%s\nvik;CMD:X;MDL:KV410;CLS:P;DES:d;SERN:1"),
    // Not SNMP at all, cut anywhere, and of the sizes at which something ends.
    raw(notFound({}), ""),
    raw(notFound({}), "M"),
    raw(notFound({}), "MFG"),
    raw(notFound({}), "MFG:"),
    raw(notFound({}), QByteArray(1020, '\xff') + "MFG:"),
    raw(found({}, "KV410", "KV410"), id.left(id.indexOf(";CLS"))),
    raw(notFound({}), id.left(id.indexOf(";CLS") - 1)),
    raw(found({}, "KV410", "KV410"), QByteArray(1024 - id.size(), '\0') + id),
    raw(found({}, "KV410", "KV410"), QByteArray(1024 - id.size(), '\0') + id + QByteArray(400, 'x')),
    raw(notFound({}), QByteArray(1024 - id.indexOf("10;CLS"), '\0') + id),
    raw(found({}, "KV210", "KV210"), idOfSize(255)),
    raw(notFound({}), idOfSize(256)),
    raw(found({}, "KV210", "KV210"), idOfSize(255) + QByteArray("\0tail", 5)),
};

QString addressOf(std::size_t index) {
    return QStringLiteral("10.0.0.%1").arg(index + 10);
}

/// What one responder adds to the log and, if it is found, to the list.
QStringList examined(std::size_t index, QStringList& list) {
    const Printer& printer = printers[index];
    if (!printer.model.isNull()) {
        const QString entry = QStringLiteral("Tovik %1 @%2\n").arg(printer.model, addressOf(index));
        if (!list.contains(entry)) {
            list.append(entry);
        }
    }
    QStringList log{QStringLiteral("Waiting for receive from 2@@@ "),
                    QStringLiteral("IP address is: ") + addressOf(index)};
    for (const QString& record : printer.log) {
        log += record.contains(u"%1") ? record.arg(list.count()) : record;
    }
    return log;
}

}  // namespace

class TestPrinterDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void findsTheSeries() {
        QVERIFY(g_PrinterList == nullptr);
        QStringList lines;
        for (std::size_t index = 0; index < printers.size(); ++index) {
            lines += addressOf(index) + u' ' + printers[index].line;
        }
        const VirtualPrinters subnet(lines);
        GetTovikQuazelPrinters();
        const QStringList log = takeLog(home_);
        QStringList probed = log.filter(QStringLiteral("**** "));
        QStringList list{manualEntry};
        QStringList collected, examinations, requests, perAddress;
        for (int address = 0; address < localAddresses; ++address) {
            int replies = 0;
            for (std::size_t index = 0; index < printers.size(); ++index) {
                for (int reply = 0; reply < printers[index].replies; ++reply, ++replies) {
                    examinations += examined(index, list);
                    requests += addressOf(index) + u' ' + deviceIdRequest;
                }
            }
            collected += probed.value(address);
            collected += QStringList(replies, QStringLiteral("Waiting for Recevfrom"));
            collected += QStringLiteral("Out of While loop");
        }
        const auto total = requests.count();
        QCOMPARE(log,
                 QStringList{QStringLiteral("GetTovikQuazelPrinters")} + collected +
                     QStringList{QStringLiteral("Total Printers avialable in the Network %1").arg(total)} +
                     examinations + QStringList{QStringLiteral("Returning to UI**")});
        QCOMPARE(subnet.requests(), QStringList(localAddresses, probe) + requests);
        QCOMPARE(*g_PrinterList, list);
        probed.sort();
        QCOMPARE(probed, QStringList({QStringLiteral("**** 10.0.0.1"), QStringLiteral("**** 127.0.0.1")}));
    }

    /// Whoever no longer answers is gone from the list, and each local address has its quiet time.
    void forgetsWhoIsGone() {
        for (const auto& [timeout, quiet] : {std::pair{1000, 2000}, std::pair{999, 0}}) {
            Timeout = timeout;
            QElapsedTimer timer;
            timer.start();
            GetTovikQuazelPrinters();
            QVERIFY2(timer.elapsed() >= quiet && timer.elapsed() < quiet + 900,
                     qPrintable(QString::number(timer.elapsed())));
            QCOMPARE(*g_PrinterList, QStringList(manualEntry));
            QVERIFY(takeLog(home_).contains(QStringLiteral("Total Printers avialable in the Network 0")));
        }
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestPrinterDiscovery, QCoreApplication)

#include "test_PrinterDiscovery.moc"

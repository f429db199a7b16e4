// Whole runs against a subnet of printers: what goes out byte for byte, what is found, and the log record by
// record.

#include "discovery/PrinterDiscovery.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

using namespace Qt::StringLiterals;

const QString manualEntry = u"Enter IP Address Manually\n"_s;

/// The network of the tests has two local addresses; the system tells in which order they are probed.
constexpr int localAddresses = 2;

// The messages as they stand in RFC 1157's encoding, with the community "public".
const QString probe =
    u"224.0.0.1 302402010004067075626c6963a117020101020100020100300c300a06062b060102012b0500"_s;
const QString deviceIdRequest =
    u"302d02010004067075626c6963a02002010202010002010030153013060f2b06010401950b01020102010103010500"_s;

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
            QStringList{u"Response is "_s + text, u"Count Inside Is %1"_s} +
                (u"Printer manufacture is "_s + QString::fromUtf8(maker)).split(u'\n') +
                QStringList{u"Printer modal is "_s + text}};
}

Printer notFound(const QString& line, const QStringList& log = {}) {
    return {line, QString(), log};
}

Printer raw(Printer printer, const QByteArray& reply) {
    printer.line = u"raw "_s + (reply.isEmpty() ? u"-"_s : QString::fromLatin1(reply.toHex()));
    return printer;
}

QByteArray idOfSize(int size) {
    const QByteArray start = "MFG:Tovik;CMD:X;MDL:KV210;CLS:PRINTER;DES:d;SERN:";
    return start + QByteArray(size - start.size(), 's');
}

const QByteArray id = deviceId(u"KV410"_s).toLatin1();
const QStringList timedOut{u"Cant able to receive anything Resource temporarily unavailable"_s};

const std::vector<Printer> printers{
    found(u"answers "_s + deviceId(u"TVK KV260N"_s), "KV260", "TVK KV260N"),
    {u"twice "_s + deviceId(u"KV210"_s), u"KV210"_s, found({}, "", "KV210").log, 2},
    notFound(u"answers MFG:Other;CMD:X;MDL:LP1;CLS:PRINTER;DES:x;SERN:1"_s),
    notFound(u"answers MFG:Tovik;CMD:X;MDL:kv210;CLS:PRINTER;DES:x;SERN:1"_s),
    notFound(u"silent"_s, timedOut),
    found(u"late 300 "_s + deviceId(u"KV460N"_s), "KV460", "KV460N"),
    notFound(u"late 1200 "_s + deviceId(u"KV460N"_s), timedOut),
    // Keys in another order.
    notFound(u"answers CMD:X;MFG:Tovik;MDL:KV210;CLS:PRINTER;DES:x;SERN:1"_s),
    notFound(u"answers MFG:Tovik;MDL:KV210;CMD:X;CLS:PRINTER;DES:x;SERN:1"_s),
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
    return u"10.0.0.%1"_s.arg(index + 10);
}

/// What one responder adds to the log and, if it is found, to the list.
QStringList examined(std::size_t index, QStringList& list) {
    const Printer& printer = printers[index];
    if (!printer.model.isNull()) {
        const QString entry = u"Tovik %1 @%2\n"_s.arg(printer.model, addressOf(index));
        if (!list.contains(entry)) {
            list.append(entry);
        }
    }
    QStringList log{u"Waiting for receive from 2@@@ "_s, u"IP address is: "_s + addressOf(index)};
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
        QStringList probed = log.filter(u"**** "_s);
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
            collected += QStringList(replies, u"Waiting for Recevfrom"_s);
            collected += u"Out of While loop"_s;
        }
        const auto total = requests.count();
        QCOMPARE(log, QStringList{u"GetTovikQuazelPrinters"_s} + collected +
                          QStringList{u"Total Printers avialable in the Network %1"_s.arg(total)} +
                          examinations + QStringList{u"Returning to UI**"_s});
        QCOMPARE(subnet.requests(), QStringList(localAddresses, probe) + requests);
        QCOMPARE(*g_PrinterList, list);
        probed.sort();
        QCOMPARE(probed, QStringList({u"**** 10.0.0.1"_s, u"**** 127.0.0.1"_s}));
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
            QVERIFY(takeLog(home_).contains(u"Total Printers avialable in the Network 0"_s));
        }
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestPrinterDiscovery, QCoreApplication)

#include "test_PrinterDiscovery.moc"

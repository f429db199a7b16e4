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
    QByteArray does;  ///< As the virtual printers take it, without the address.
    QString model{};  ///< The model name it is found under; empty for one that is not.
    QString reported = model;
    QString maker = u"Tovik"_s;
    QString failure{};  ///< The record of it.
    int replies = 1;
};

QByteArray raw(const QByteArray& reply) {
    return "raw " + (reply.isEmpty() ? "-" : reply.toHex());
}

const QString timedOut = u"Cant able to receive anything Resource temporarily unavailable\n"_s;
const QByteArray id = deviceId(u"KV410"_s).toLatin1();
const qsizetype afterModel = id.indexOf(";CLS");
const QByteArray longId = id + QByteArray(255 - id.size(), 's');
const QByteArray zeros(1024, '\0');

const std::vector<Printer> printers{
    {"answers " + deviceId(u"TVK KV260N"_s).toLatin1(), u"KV260"_s, u"TVK KV260N"_s},
    {.does = "twice " + deviceId(u"KV210"_s).toLatin1(), .model = u"KV210"_s, .replies = 2},
    {"answers MFG:Other;CMD:X;MDL:LP1;CLS:PRINTER;DES:x;SERN:1"},
    {.does = "silent", .failure = timedOut},
    {"late 300 " + deviceId(u"KV460N"_s).toLatin1(), u"KV460"_s, u"KV460N"_s},
    {.does = "late 1200 " + deviceId(u"KV460N"_s).toLatin1(), .failure = timedOut},
    {"answers CMD:X;MFG:Tovik;MDL:KV210;CLS:PRINTER;DES:x;SERN:1"},
    // A maker that would be a format or a record, were it taken for one.
    {raw("MFG:100%n%s\nvik;CMD:X;MDL:KV410;CLS:P;DES:d;SERN:1"), u"KV410"_s, u"KV410"_s, u"100%n%s\nvik"_s},
    // Not SNMP at all, cut anywhere, and of the sizes at which something ends.
    {raw("")},
    {raw(id.left(afterModel)), u"KV410"_s},
    {raw(id.left(afterModel - 1))},
    {raw(zeros.left(1024 - id.size()) + id + QByteArray(400, 'x')), u"KV410"_s},
    {raw(zeros.left(1024 - afterModel + 2) + id)},
    {raw(longId), u"KV410"_s},
    {raw(longId + 's')},
    {raw(longId + QByteArray("\0tail", 5)), u"KV410"_s},
};

QString addressOf(std::size_t index) {
    return u"10.0.0.%1"_s.arg(index + 10);
}

/// What one responder adds to the log and, if it is found, to the list.
QString examined(std::size_t index, QStringList& list) {
    const Printer& printer = printers[index];
    const QString start =
        u"Waiting for receive from 2@@@ \nIP address is: %1\n"_s.arg(addressOf(index)) + printer.failure;
    if (printer.model.isEmpty()) {
        return start;
    }
    const QString entry = u"Tovik %1 @%2\n"_s.arg(printer.model, addressOf(index));
    if (!list.contains(entry)) {
        list.append(entry);
    }
    return start + u"Response is %1\nCount Inside Is %2\nPrinter manufacture is %3\nPrinter modal is %1\n"_s
                       .arg(printer.reported)
                       .arg(list.count())
                       .arg(printer.maker);
}

}  // namespace

class TestPrinterDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void findsTheSeries() {
        QVERIFY(g_PrinterList == nullptr);
        QStringList lines;
        for (std::size_t index = 0; index < printers.size(); ++index) {
            lines += addressOf(index) + u' ' + QString::fromLatin1(printers[index].does);
        }
        const VirtualPrinters subnet(lines);
        GetTovikQuazelPrinters();
        const QStringList log = takeLog(home_);
        QStringList probed = log.filter(u"**** "_s);
        QStringList list{manualEntry};
        QStringList requests;
        QString collected, examinations;
        for (int address = 0; address < localAddresses; ++address) {
            collected += probed.value(address) + u'\n';
            for (std::size_t index = 0; index < printers.size(); ++index) {
                for (int reply = 0; reply < printers[index].replies; ++reply) {
                    collected += u"Waiting for Recevfrom\n"_s;
                    examinations += examined(index, list);
                    requests += addressOf(index) + u' ' + deviceIdRequest;
                }
            }
            collected += u"Out of While loop\n"_s;
        }
        const QString total = u"Total Printers avialable in the Network %1\n"_s.arg(requests.count());
        QCOMPARE(log.join(u'\n'),
                 u"GetTovikQuazelPrinters\n"_s + collected + total + examinations + u"Returning to UI**"_s);
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

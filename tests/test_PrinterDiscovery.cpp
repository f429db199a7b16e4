// Whole runs against a subnet of printers: what goes out byte for byte, what is found, and the log record by
// record.

#include "discovery/PrinterDiscovery.h"
#include "discovery/ProbeCollection.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString manualEntry = u"Enter IP Address Manually\n"_s;

// The messages as they stand in RFC 1157's encoding, with the community "public".
const QString probe =
    u"224.0.0.1 302402010004067075626c6963a117020101020100020100300c300a06062b060102012b0500"_s;
const QString deviceIdRequest =
    u"302d02010004067075626c6963a02002010202010002010030153013060f2b06010401950b01020102010103010500"_s;

struct Printer {
    QString does;      ///< As the virtual printers take it, without the address.
    QString model{};   ///< The model name it is found under; empty for one that is not.
    QString record{};  ///< What is logged of its answer.
    int replies = 1;
};

/// The records of a printer of the series; %1 is the length of the list by then.
QString records(const QString& model, const QString& maker = u"Tovik"_s) {
    return u"Response is %2\nCount Inside Is %1\nPrinter manufacture is %3\nPrinter modal is %2\n"_s.arg(
        u"%1"_s, model, maker);
}

QString raw(const QByteArray& reply) {
    return u"raw "_s + QString::fromLatin1(reply.toHex());
}

const QString timedOut = u"Cant able to receive anything Resource temporarily unavailable\n"_s;
const QByteArray id = deviceId(u"KV410"_s).toLatin1();

// One has a maker that would be a format or a record, were it taken for one; the last sends more than a
// reply.
const std::vector<Printer> printers{
    {u"answers "_s + deviceId(u"TVK KV260N"_s), u"KV260"_s, records(u"TVK KV260N"_s)},
    {u"twice "_s + deviceId(u"KV210"_s), u"KV210"_s, records(u"KV210"_s), 2},
    {u"answers MFG:Other;CMD:X;MDL:LP1;CLS:PRINTER;DES:x;SERN:1"_s},
    {u"silent"_s, {}, timedOut},
    {u"late 300 "_s + deviceId(u"KV460N"_s), u"KV460"_s, records(u"KV460N"_s)},
    {u"late 1200 "_s + deviceId(u"KV460N"_s), {}, timedOut},
    {raw("MFG:100%n%s\nvik;CMD:X;MDL:KV410;CLS:P;DES:d;SERN:1"), u"KV410"_s,
     records(u"KV410"_s, u"100%n%s\nvik"_s)},
    {u"raw -"_s},
    {raw(QByteArray(1024 - id.size(), '\0') + id + "xxx"), u"KV410"_s, records(u"KV410"_s)},
    {raw(QByteArray(1024, '\0') + id)},
};

}  // namespace

class TestPrinterDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void findsTheSeries() {
        QStringList lines;
        for (const Printer& printer : printers) {
            lines += u"10.0.0.%1 %2"_s.arg(lines.size() + 10).arg(printer.does);
        }
        const VirtualPrinters subnet(lines);
        GetTovikQuazelPrinters();
        const QStringList log = takeLog(home_);
        QStringList list{manualEntry};
        QStringList requests;
        QString collected, examined;
        for (const QString& localAddress : log.filter(u"**** "_s)) {
            collected += localAddress + u'\n';
            for (std::size_t index = 0; index < printers.size(); ++index) {
                const Printer& printer = printers[index];
                const QString address = u"10.0.0.%1"_s.arg(index + 10);
                const QString entry = u"Tovik %1 @%2\n"_s.arg(printer.model, address);
                for (int reply = 0; reply < printer.replies; ++reply) {
                    if (!printer.model.isEmpty() && !list.contains(entry)) {
                        list += entry;
                    }
                    collected += u"Waiting for Recevfrom\n"_s;
                    examined += u"Waiting for receive from 2@@@ \nIP address is: %1\n"_s.arg(address) +
                                QString(printer.record).replace(u"%1"_s, QString::number(list.size()));
                    requests += address + u' ' + deviceIdRequest;
                }
            }
            collected += u"Out of While loop\n"_s;
        }
        const QString total = u"Total Printers avialable in the Network %1\n"_s.arg(requests.count());
        QCOMPARE(log.join(u'\n'),
                 u"GetTovikQuazelPrinters\n"_s + collected + total + examined + u"Returning to UI**"_s);
        QCOMPARE(subnet.requests(), QStringList(2, probe) + requests);
        QCOMPARE(*g_PrinterList, list);
        QVERIFY(log.contains(u"**** 10.0.0.1"_s) && log.contains(u"**** 127.0.0.1"_s));
    }

    /// A printer that no longer answers is gone from the list, and each of two local addresses has its quiet time.
    void forgetsWhoIsGone() {
        QElapsedTimer timer;
        timer.start();
        GetTovikQuazelPrinters();
        QVERIFY(timer.elapsed() >= 2000 && timer.elapsed() < 2900);
        Timeout = 999;
        GetTovikQuazelPrinters();
        QVERIFY(timer.elapsed() < 3800);
        QCOMPARE(*g_PrinterList, QStringList(manualEntry));
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestPrinterDiscovery, QCoreApplication)

#include "test_PrinterDiscovery.moc"

// The walk over the print queues, record by record, against a print service that is in order and against
// ones that are not.

#include "discovery/InstalledPrinters.h"
#include "support/Fixtures.h"
#include "support/PrivateCupsd.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <cups/cups.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

std::function<const char*(const char*)> ppdOfQueue;  // In place of CUPS's own answer, if set.

QString queueName(const char* model, const char* address) {
    return u"Tovik-%1-Ethernet-Printer-IP=%2"_s.arg(QLatin1String(model), QLatin1String(address));
}

struct Queue {
    QString name;
    QByteArrayList pcFileNames;  ///< None: a PPD that does not parse, or no PPD at all.
    bool hasPpd = true;
};

// In the order of their names, which is that of the walk.
const QList<Queue> queues{
    {u"Office"_s, {"OFFICE.PPD"}},
    {queueName("KV210", "10.0.0.1"), {"KV210.PPD"}},
    {queueName("KV210", "10.0.0.2"), {"kv210.ppd"}},
    {queueName("KV210", "10.0.0.3"), {"OTHER.PPD", "KV210.PPD", "KV260.PPD"}},
    {queueName("KV210", "10.0.0.4"), {}, false},
    {queueName("KV210", "10.0.0.5"), {}},
    {queueName("KV210", "10.0.0.6"), {"KV210.PPD.gz"}},
    {queueName("KV260", "10.0.0.1"), {"KV260.PPD"}},
    {queueName("KV410", "10.0.0.7"), {"OTHER.PPD"}},
    {queueName("KV460", "10.0.0.8"), {"KV410.PPD"}},
};

bool isOfTheSeries(const QByteArray& pcFileName) {
    return QByteArrayList({"KV210.PPD", "KV260.PPD", "KV410.PPD", "KV460.PPD"}).contains(pcFileName);
}

/// The records of one queue, the number of an error left out.
QStringList recordsOf(const Queue& queue, const QString& lookedFor, const QString& ppdPath) {
    QStringList records{u"Printer name is "_s + queue.name,
                        u"PPD name is "_s + (queue.hasPpd ? ppdPath : QString())};
    if (queue.pcFileNames.isEmpty()) {
        records += u"PPD open failed"_s;
    }
    for (const QByteArray& value : queue.pcFileNames) {
        if (isOfTheSeries(value)) {
            records += u"String str Value is "_s + queue.name;
            if (queue.name == lookedFor) {
                records += u"ModelName String was found"_s;
                break;
            }
            records += u"ModelName string was not found"_s;
        }
        records += u"Attr  value is "_s + QString::fromLatin1(value);
    }
    return records;
}

QStringList walk(const QString& lookedFor, const QStringList& records, qsizetype count) {
    return QStringList{u"GetInstalledPrinterList"_s,
                       u"Number of printers found in the system is %1"_s.arg(count),
                       u"Model Name *** Is "_s + lookedFor} +
           records + QStringList{u"Return from CUPS Printer List"_s};
}

}  // namespace

// The linker puts these in front of CUPS's own function.
extern "C" const char* __real_cupsGetPPD2(http_t* http, const char* name);
extern "C" const char* __wrap_cupsGetPPD2(http_t* http, const char* name);
extern "C" const char* __wrap_cupsGetPPD2(http_t* http, const char* name) {
    return ppdOfQueue ? ppdOfQueue(name) : __real_cupsGetPPD2(http, name);
}

class TestInstalledPrinters : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QMap<QString, QByteArray> ppds;
        for (const Queue& queue : queues) {
            ppds[queue.name] =
                queue.pcFileNames.isEmpty() ? QByteArray("no PPD\n") : PrivateCupsd::ppd(queue.pcFileNames);
            if (!queue.hasPpd) {
                ppds[queue.name] = QByteArray();
            }
        }
        service_.emplace(ppds);
    }

    void cleanup() { ppdOfQueue = nullptr; }

    void walks_data() {
        QTest::addColumn<QString>("lookedFor");
        QTest::addColumn<int>("installed");
        QTest::newRow("exact") << queueName("KV210", "10.0.0.1") << 1;
        QTest::newRow("the same address, another model's queue") << queueName("KV260", "10.0.0.1") << 1;
        QTest::newRow("no queue of that model") << queueName("KV460", "10.0.0.1") << 0;
        QTest::newRow("the PPD in lower case") << queueName("KV210", "10.0.0.2") << 0;
        QTest::newRow("the second attribute") << queueName("KV210", "10.0.0.3") << 1;
        QTest::newRow("no PPD") << queueName("KV210", "10.0.0.4") << 0;
        QTest::newRow("a PPD that does not parse") << queueName("KV210", "10.0.0.5") << 0;
        QTest::newRow("a longer PPD name") << queueName("KV210", "10.0.0.6") << 0;
        QTest::newRow("another maker's PPD") << queueName("KV410", "10.0.0.7") << 0;
        QTest::newRow("another model's PPD") << queueName("KV460", "10.0.0.8") << 1;
        QTest::newRow("leading zeros") << queueName("KV210", "010.000.000.001") << 0;
        QTest::newRow("a longer address") << queueName("KV210", "10.0.0.11") << 0;
        QTest::newRow("lower case") << queueName("kv210", "10.0.0.1") << 0;
    }
    void walks() {
        QFETCH(QString, lookedFor);
        QStringList records;
        for (const Queue& queue : queues) {
            records += recordsOf(queue, lookedFor, service_->ppdPath(queue.name));
        }
        QCOMPARE(logOf(lookedFor), walk(lookedFor, records, queues.size()));
        QTEST(g_PrinterAlreadyInstalled, "installed");
    }

    /// CUPS lists a queue again for each of its instances.
    void findsTwoMatches() {
        const QString name = queueName("KV210", "10.0.0.1");
        const QString options = QFileInfo(service_->ppdPath(name)).path() + u"/../lpoptions"_s;
        writeFile(options, "Dest " + name.toUtf8() + "/photo media=CR80\n");
        const QStringList log = logOf(name);
        QFile::remove(options);
        QCOMPARE(log.count(u"ModelName String was found"_s), 2);
        QCOMPARE(log.count(u"Printer name is "_s + name), 2);
        QCOMPARE(g_PrinterAlreadyInstalled, 1);
    }

    /// The PPD is where no buffer can name it, or is not behind a link: its queue does not count.
    void passesOverPpdsWithoutAUsableLink() {
        const QString lookedFor = queueName("KV210", "10.0.0.1");
        const QByteArray link = (home_.path() + u"/link"_s).toUtf8();
        const QByteArray farAway = "/" + QByteArray("very-long/").repeated(200) + "KV210.ppd";
        QCOMPARE(::symlink(farAway, link), 0);
        const QByteArray file = service_->ppdPath(lookedFor).toUtf8();
        for (const auto& [answer, shown] : {std::pair{link, farAway.left(1023)}, {file, QByteArray()}}) {
            const QByteArray given = answer;
            ppdOfQueue = [&given](const char*) { return given.constData(); };
            const QStringList log = logOf(lookedFor);
            QCOMPARE(log.count(u"PPD name is "_s + QString::fromLatin1(shown)), queues.size());
            QCOMPARE(log.count(u"PPD open failed"_s), queues.size());
            QCOMPARE(g_PrinterAlreadyInstalled, 0);
        }
    }

    /// The last of the shared service: it is stopped in the middle of a walk.
    void outlivesTheService() {
        const QString lookedFor = queueName("KV210", "10.0.0.1");
        ppdOfQueue = [this](const char* name) {
            service_->stop();
            return __real_cupsGetPPD2(CUPS_HTTP_DEFAULT, name);
        };
        const QStringList log = logOf(lookedFor);
        QCOMPARE(log.filter(u"Printer name is "_s).count(), queues.size());
        QCOMPARE(log.last(), u"Return from CUPS Printer List"_s);

        g_PrinterAlreadyInstalled = 1;
        QCOMPARE(logOf(lookedFor), walk(lookedFor, {}, 0));
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
    }

    void takesAThousandQueues() {
        QMap<QString, QByteArray> names;
        for (int number = 1; number <= 1000; ++number) {
            names[u"office-%1"_s.arg(number)] = QByteArray();
        }
        const PrivateCupsd service(names);
        // Only now, as the service takes long to read them; the walk finds them all the same.
        for (auto name = names.keyBegin(); name != names.keyEnd(); ++name) {
            writeFile(service.ppdPath(*name), PrivateCupsd::ppd({"KV210.PPD"}));
        }
        QElapsedTimer timer;
        timer.start();
        const QStringList log = logOf(u"office-1000"_s);
        qInfo("1000 queues: %lld ms", timer.elapsed());
        QCOMPARE(log.filter(u"Printer name is "_s).count(), 1000);
        QCOMPARE(g_PrinterAlreadyInstalled, 1);
    }

  private:
    /// The log of one check, the numbers of errors left out: they are CUPS's business.
    QStringList logOf(const QString& lookedFor) {
        g_ModelName = lookedFor;
        // A thread of its own, as CUPS remembers for each thread which service it found.
        std::thread(GetInstalledPrinterList).join();
        return takeLog(home_).replaceInStrings(QRegularExpression(u"^(PPD open failed) \\d+$"_s), u"\\1"_s);
    }

    TemporaryHome home_;
    std::optional<PrivateCupsd> service_;
};

QUAZEL_TEST_MAIN(TestInstalledPrinters, QCoreApplication)

#include "test_InstalledPrinters.moc"

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
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

std::function<const char*(const char*)> ppdOfQueue;  // In place of CUPS's own answer, if set.
int waitDivisor = 1;                                 // What the program's waits for the service are cut by.

/// Its name for the queue that the page would make: "KV210 10.0.0.1".
QString queueName(const QString& printer) {
    return u"Tovik-%1-Ethernet-Printer-IP=%2"_s.arg(printer.section(u' ', 0, 0), printer.section(u' ', 1));
}

/// A socket that takes connections and never answers.
class SilentService {
  public:
    explicit SilentService(const QString& path) : path_(path.toUtf8()) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path_.begin(), path_.end(), address.sun_path);
        QCOMPARE(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        QCOMPARE(::listen(descriptor_, 10), 0);
    }
    SilentService(const SilentService&) = delete;
    SilentService& operator=(const SilentService&) = delete;
    ~SilentService() {
        ::close(descriptor_);
        ::unlink(path_);
    }

    [[nodiscard]] const QByteArray& path() const { return path_; }

  private:
    QByteArray path_;
    int descriptor_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
};

}  // namespace

// The linker puts these in front of CUPS's own functions.
extern "C" const char* __real_cupsGetPPD2(http_t* http, const char* name);
extern "C" const char* __wrap_cupsGetPPD2(http_t* http, const char* name);
extern "C" const char* __wrap_cupsGetPPD2(http_t* http, const char* name) {
    return ppdOfQueue ? ppdOfQueue(name) : __real_cupsGetPPD2(http, name);
}
extern "C" int __real_httpWait(http_t* http, int milliseconds);
extern "C" int __wrap_httpWait(http_t* http, int milliseconds);
extern "C" int __wrap_httpWait(http_t* http, int milliseconds) {
    return __real_httpWait(http, milliseconds / waitDivisor);
}

class TestInstalledPrinters : public QObject {
    Q_OBJECT

  private slots:
    void cleanup() {
        ppdOfQueue = nullptr;
        waitDivisor = 1;
    }

    void logsEachQueue() {
        // Without what is the same in each name and path.
        const QString log = logOf(queueName(u"KV210 10.0.0.3"_s))
                                .join(u'|')
                                .remove(QFileInfo(service_.ppdPath(u"Office"_s)).path())
                                .replace(u"Tovik-"_s, u""_s)
                                .replace(u"-Ethernet-Printer-IP=10.0.0"_s, u""_s);
        QCOMPARE(
            log,
            u"GetInstalledPrinterList|Number of printers found in the system is 10|Model Name *** Is KV210.3|"
            "Printer name is Office|PPD name is /Office.ppd|Attr  value is OFFICE.PPD|"
            "Printer name is KV210.1|PPD name is /KV210.1.ppd|"
            "String str Value is KV210.1|ModelName string was not found|Attr  value is KV210.PPD|"
            "Printer name is KV210.2|PPD name is /KV210.2.ppd|Attr  value is kv210.ppd|"
            "Printer name is KV210.3|PPD name is /KV210.3.ppd|"
            "Attr  value is OTHER.PPD|String str Value is KV210.3|ModelName String was found|"
            "Printer name is KV210.4|PPD name is |PPD open failed|"
            "Printer name is KV210.5|PPD name is /KV210.5.ppd|PPD open failed|"
            "Printer name is KV210.6|PPD name is /KV210.6.ppd|Attr  value is KV210.PPD.gz|"
            "Printer name is KV260.1|PPD name is /KV260.1.ppd|"
            "String str Value is KV260.1|ModelName string was not found|Attr  value is KV260.PPD|"
            "Printer name is KV410.7|PPD name is /KV410.7.ppd|Attr  value is OTHER.PPD|"
            "Printer name is KV460.8|PPD name is /KV460.8.ppd|"
            "String str Value is KV460.8|ModelName string was not found|Attr  value is KV410.PPD|"
            "Return from CUPS Printer List"_s);
    }

    /// The whole name counts, and any PPD of the series.
    void findsQueues() {
        const QString found = u"KV210 10.0.0.1|KV210 10.0.0.3|KV260 10.0.0.1|KV460 10.0.0.8"_s;
        const QString notFound =
            u"KV210 10.0.0.2|KV210 10.0.0.4|KV210 10.0.0.5|KV210 10.0.0.6|KV410 10.0.0.7|"
            "KV460 10.0.0.1|KV210 010.000.000.001|KV210 10.0.0.11|kv210 10.0.0.1"_s;
        for (const QString& printer : (found + u'|' + notFound).split(u'|')) {
            const int installed = found.contains(printer) ? 1 : 0;
            QCOMPARE(logOf(queueName(printer)).count(u"ModelName String was found"_s), installed);
            QVERIFY2(g_PrinterAlreadyInstalled == installed, qPrintable(printer));
        }
    }

    /// CUPS lists a queue again for each of its instances.
    void findsTwoMatches() {
        const QString name = queueName(u"KV210 10.0.0.1"_s);
        const QString options = QFileInfo(service_.ppdPath(name)).path() + u"/../lpoptions"_s;
        writeFile(options, "Dest " + name.toUtf8() + "/photo media=CR80\n");
        const QStringList log = logOf(name);
        QFile::remove(options);
        QCOMPARE(log.count(u"ModelName String was found"_s), 2);
        QCOMPARE(g_PrinterAlreadyInstalled, 1);
    }

    /// The longest target of a link that fits the buffer counts. One byte more, or no link: it does not.
    void passesOverPpdsWithoutAUsableLink() {
        const QString lookedFor = queueName(u"KV210 10.0.0.1"_s);
        const QByteArray link = (home_.path() + u"/link"_s).toUtf8();
        const QByteArray file = service_.ppdPath(lookedFor).toUtf8();
        const QByteArray longest = file.rightJustified(1023, '/');
        // Cut to the buffer, the path of the second would be the first's.
        for (const auto& [target, shown] : {std::pair{longest, longest}, {longest + "x", QByteArray()}}) {
            const QByteArray targetPath = target;
            QFile::remove(QString::fromUtf8(link));
            QCOMPARE(::symlink(targetPath, link), 0);
            ppdOfQueue = [&link](const char*) { return link.constData(); };
            const QStringList log = logOf(lookedFor);
            QCOMPARE(log.count(u"PPD name is "_s + QString::fromLatin1(shown)), 10);
            QCOMPARE(log.count(u"PPD open failed"_s), shown.isEmpty() ? 10 : 0);
            QCOMPARE(g_PrinterAlreadyInstalled, shown.isEmpty() ? 0 : 1);
        }
        ppdOfQueue = [&file](const char*) { return file.constData(); };
        QCOMPARE(logOf(lookedFor).count(u"PPD name is "_s), 10);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
    }

    /// It takes connections, and nothing else comes from it.
    void doesNotWaitForASilentService() {
        const SilentService silent(home_.path() + u"/silent.sock"_s);
        const QByteArray server = qgetenv("CUPS_SERVER");
        qputenv("CUPS_SERVER", silent.path());
        QElapsedTimer timer;
        timer.start();
        const QStringList log = logOf(u"KV210"_s);
        const qint64 elapsed = timer.elapsed();
        qputenv("CUPS_SERVER", server);
        QVERIFY2(elapsed >= 10'000 && elapsed < 11'000, qPrintable(QString::number(elapsed)));
        QCOMPARE(log.join(u'|'),
                 u"GetInstalledPrinterList|Number of printers found in the system is 0|"
                 "Model Name *** Is KV210|Return from CUPS Printer List"_s);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
    }

    /// It falls silent on the first question for a PPD: it is not asked for another.
    void asksNoMoreOfAServiceThatFellSilent() {
        const SilentService silent(home_.path() + u"/silent.sock"_s);
        int asked = 0;
        ppdOfQueue = [&](const char*) {
            ++asked;
            cupsSetServer(silent.path());
            std::this_thread::sleep_for(std::chrono::seconds(1));
            return nullptr;
        };
        waitDivisor = 100;
        const QStringList log = logOf(queueName(u"KV210 10.0.0.1"_s));
        QCOMPARE(asked, 1);
        QCOMPARE(log.count(u"PPD open failed"_s), 10);
    }

    /// The last of the shared service: it is stopped in the middle of a walk.
    void outlivesTheService() {
        const QString lookedFor = queueName(u"KV210 10.0.0.1"_s);
        ppdOfQueue = [this](const char* name) {
            service_.stop();
            return __real_cupsGetPPD2(CUPS_HTTP_DEFAULT, name);
        };
        const QStringList log = logOf(lookedFor);
        QCOMPARE(log.filter(u"Printer name is "_s).count(), 10);
        QCOMPARE(log.last(), u"Return from CUPS Printer List"_s);

        g_PrinterAlreadyInstalled = 1;
        QCOMPARE(
            logOf(lookedFor).join(u'|'),
            u"GetInstalledPrinterList|Number of printers found in the system is 0|"
            "Model Name *** Is Tovik-KV210-Ethernet-Printer-IP=10.0.0.1|Return from CUPS Printer List"_s);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
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
    PrivateCupsd service_{
        {{u"Office"_s, PrivateCupsd::ppd({"OFFICE.PPD"})},
         {queueName(u"KV210 10.0.0.1"_s), PrivateCupsd::ppd({"KV210.PPD"})},
         {queueName(u"KV210 10.0.0.2"_s), PrivateCupsd::ppd({"kv210.ppd"})},
         {queueName(u"KV210 10.0.0.3"_s), PrivateCupsd::ppd({"OTHER.PPD", "KV210.PPD", "KV260.PPD"})},
         {queueName(u"KV210 10.0.0.4"_s), QByteArray()},
         {queueName(u"KV210 10.0.0.5"_s), "no PPD\n"},
         {queueName(u"KV210 10.0.0.6"_s), PrivateCupsd::ppd({"KV210.PPD.gz"})},
         {queueName(u"KV260 10.0.0.1"_s), PrivateCupsd::ppd({"KV260.PPD"})},
         {queueName(u"KV410 10.0.0.7"_s), PrivateCupsd::ppd({"OTHER.PPD"})},
         {queueName(u"KV460 10.0.0.8"_s), PrivateCupsd::ppd({"KV410.PPD"})}}};
};

QUAZEL_TEST_MAIN(TestInstalledPrinters, QCoreApplication)

#include "test_InstalledPrinters.moc"

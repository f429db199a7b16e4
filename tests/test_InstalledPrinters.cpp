// The walk over the print queues, record by record, against a print service of the test's own that is in
// order, that is silent, and that stops.

#include "discovery/InstalledPrinters.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <cups/cups.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

std::function<const char*(const char*)> ppdOfQueue;  // In place of CUPS's own answer, if set.
int waitDivisor = 1;                                 // What the program's waits for the service are cut by.
int longestWait = 0;                                 // Before the cut, in milliseconds.

/// A PPD of the series' form with these values of its attribute PCFileName.
QByteArray ppd(const QByteArrayList& pcFileNames) {
    QByteArray text = contentOf(sourcePath(u"tools/kv-series.ppd.in"_s));
    text.replace("*PCFileName: \"@MODEL@.PPD\"\n",
                 "*PCFileName: \"" + pcFileNames.join("\"\n*PCFileName: \"") + "\"\n");
    return text.replace("@MODEL@", "KV");
}

/// With their PPDs, if they have one.
const std::pair<QString, QByteArray> queues[]{
    {u"Office"_s, ppd({"OFFICE.PPD"})},
    {u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.1"_s, ppd({"KV210.PPD"})},
    {u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.2"_s, ppd({"kv210.ppd"})},
    {u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.3"_s, ppd({"OTHER.PPD", "KV210.PPD", "KV260.PPD"})},
    {u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.4"_s, QByteArray()},
    {u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.5"_s, "no PPD\n"},
    {u"Tovik-KV460-Ethernet-Printer-IP=10.0.0.8"_s, ppd({"KV410.PPD"})}};
constexpr auto queueCount = static_cast<int>(std::size(queues));

}  // namespace

// The linker puts these in front of CUPS's own functions.
extern "C" {
const char* __real_cupsGetPPD2(http_t* http, const char* name);
const char* __wrap_cupsGetPPD2(http_t* http, const char* name) {
    return ppdOfQueue ? ppdOfQueue(name) : __real_cupsGetPPD2(http, name);
}
int __real_httpWait(http_t* http, int milliseconds);
int __wrap_httpWait(http_t* http, int milliseconds) {
    longestWait = std::max(longestWait, milliseconds);
    return __real_httpWait(http, milliseconds / waitDivisor);
}
}

class TestInstalledPrinters : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QVERIFY(QDir().mkpath(etc_ + u"/ppd"_s));
        QByteArray configuration;
        for (const auto& [queue, ppd] : queues) {
            configuration += "<Printer " + queue.toUtf8() +
                             ">\nDeviceURI file:///dev/null\nState Idle\nAccepting Yes\n</Printer>\n";
            if (!ppd.isNull()) {
                writeFile(ppdPath(queue), ppd);
            }
        }
        writeFile(etc_ + u"/printers.conf"_s, configuration);
        qputenv("CUPS_SERVER", socket_);
        qputenv("CUPS_SERVERROOT", etc_.toUtf8());
        qputenv("TMPDIR", (home_.path() + u"/cups/tmp"_s).toUtf8());
        service_.setProcessChannelMode(QProcess::ForwardedChannels);
        service_.start(u"setpriv"_s, {u"--pdeathsig"_s, u"KILL"_s, sourcePath(u"tools/private-cupsd"_s),
                                      home_.path() + u"/cups"_s});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QString::fromUtf8(socket_)), 40'000);

        silentService_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(silent_.begin(), silent_.end(), address.sun_path);
        QCOMPARE(::bind(silentService_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        QCOMPARE(::listen(silentService_, 10), 0);
    }
    void cleanup() {
        ppdOfQueue = nullptr;
        waitDivisor = 1;
    }

    void logsEachQueue() {
        // Without what is the same in each name and path.
        const QString log = logOf(queues[3].first)
                                .join(u'|')
                                .remove(etc_ + u"/ppd"_s)
                                .replace(u"Tovik-"_s, u""_s)
                                .replace(u"-Ethernet-Printer-IP=10.0.0"_s, u""_s);
        QCOMPARE(
            log,
            u"GetInstalledPrinterList|Number of printers found in the system is 7|Model Name *** Is KV210.3|"
            "Printer name is Office|PPD name is /Office.ppd|Attr  value is OFFICE.PPD|"
            "Printer name is KV210.1|PPD name is /KV210.1.ppd|"
            "String str Value is KV210.1|ModelName string was not found|Attr  value is KV210.PPD|"
            "Printer name is KV210.2|PPD name is /KV210.2.ppd|Attr  value is kv210.ppd|"
            "Printer name is KV210.3|PPD name is /KV210.3.ppd|"
            "Attr  value is OTHER.PPD|String str Value is KV210.3|ModelName String was found|"
            "Printer name is KV210.4|PPD name is |PPD open failed|"
            "Printer name is KV210.5|PPD name is /KV210.5.ppd|PPD open failed|"
            "Printer name is KV460.8|PPD name is /KV460.8.ppd|"
            "String str Value is KV460.8|ModelName string was not found|Attr  value is KV410.PPD|"
            "Return from CUPS Printer List"_s);
        QCOMPARE(g_PrinterAlreadyInstalled, 1);
        (void)logOf(u"kv210"_s);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
    }

    /// The longest target of a link that fits the buffer counts. One byte more, or no link: it does not.
    void passesOverPpdsWithoutAUsableLink() {
        const QByteArray link = (home_.path() + u"/link"_s).toUtf8();
        const QByteArray longest = ppdPath(queues[1].first).toUtf8().rightJustified(1023, '/');
        // Cut to the buffer, the path of the second would be the first's.
        for (const auto& [target, installed] :
             {std::pair{longest, 1}, {longest + "x", 0}, {QByteArray(), 0}}) {
            const QByteArray path = target.isEmpty() ? longest : link;
            QFile::remove(QString::fromUtf8(link));
            QVERIFY(target.isEmpty() || ::symlink(target, link) == 0);
            ppdOfQueue = [&path](const char*) { return path.constData(); };
            const QStringList log = logOf(queues[1].first);
            QCOMPARE(log.count(u"PPD open failed"_s), installed == 1 ? 0 : queueCount);
            QCOMPARE(g_PrinterAlreadyInstalled, installed);
        }
    }

    /// It takes connections, and nothing else comes from it.
    void doesNotWaitForASilentService() {
        qputenv("CUPS_SERVER", silent_);
        waitDivisor = 100;
        longestWait = 0;
        QElapsedTimer timer;
        timer.start();
        const QStringList log = logOf(u"KV210"_s);
        const qint64 elapsed = timer.elapsed();
        qputenv("CUPS_SERVER", socket_);
        QVERIFY2(longestWait > 9'000 && longestWait <= 10'000, qPrintable(QString::number(longestWait)));
        QVERIFY2(elapsed < 5'000, qPrintable(QString::number(elapsed)));  // It does not ask a second time.
        QCOMPARE(log.join(u'|'), noQueues_);
    }

    /// It falls silent on the first question for a PPD: it is not asked for another.
    void asksNoMoreOfAServiceThatFellSilent() {
        int asked = 0;
        ppdOfQueue = [&](const char*) {
            ++asked;
            cupsSetServer(silent_);
            std::this_thread::sleep_for(std::chrono::seconds(1));
            return nullptr;
        };
        waitDivisor = 100;
        QCOMPARE(logOf(u"KV210"_s).count(u"PPD open failed"_s), queueCount);
        QCOMPARE(asked, 1);
    }

    /// The last of the service: it is stopped in the middle of a walk.
    void outlivesTheService() {
        ppdOfQueue = [this](const char* name) {
            const auto pid = static_cast<pid_t>(service_.processId());
            siginfo_t ended;
            ::kill(pid, SIGKILL);
            ::waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
            return __real_cupsGetPPD2(CUPS_HTTP_DEFAULT, name);
        };
        const QStringList log = logOf(queues[1].first);
        QCOMPARE(log.filter(u"Printer name is "_s).count(), queueCount);
        QCOMPARE(log.last(), u"Return from CUPS Printer List"_s);
        g_PrinterAlreadyInstalled = 1;
        QCOMPARE(logOf(u"KV210"_s).join(u'|'), noQueues_);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
        QVERIFY(service_.waitForFinished());
    }

  private:
    /// The log of one check, the numbers of errors left out: they are CUPS's business.
    QStringList logOf(const QString& lookedFor) {
        g_ModelName = lookedFor;
        // A thread of its own, as CUPS remembers for each thread which service it found.
        std::thread(GetInstalledPrinterList).join();
        return takeLog(home_).replaceInStrings(QRegularExpression(u"^(PPD open failed) \\d+$"_s), u"\\1"_s);
    }

    [[nodiscard]] QString ppdPath(const QString& queue) const { return etc_ + u"/ppd/%1.ppd"_s.arg(queue); }

    const QString noQueues_ =
        u"GetInstalledPrinterList|Number of printers found in the system is 0|"
        "Model Name *** Is KV210|Return from CUPS Printer List"_s;
    TemporaryHome home_;
    const QString etc_ = home_.path() + u"/cups/etc"_s;
    const QByteArray socket_ = (home_.path() + u"/cups/cups.sock"_s).toUtf8();
    const QByteArray silent_ = (home_.path() + u"/silent.sock"_s).toUtf8();
    int silentService_ = -1;
    QProcess service_;
};

QUAZEL_TEST_MAIN(TestInstalledPrinters, QCoreApplication)

#include "test_InstalledPrinters.moc"

// The check of the print queues and its log, as root and as an ordinary user, with a private print service
// that works, stops responding, and ends.

#include "discovery/InstalledPrinters.h"
#include "support/Fixtures.h"

#include <cups/cups.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <thread>

namespace {

std::function<const char*(const char*)> ppdOfQueue;  // Replaces CUPS's function, if set.
const char* server = nullptr;                        // Replaces the name of CUPS's server, if set.
int waitDivisor = 1;                                 // Shortens the program's waits.
int longestWait = 0;                                 // Before shortening, in milliseconds.

const QString series = u"Tovik-KV210-Ethernet-Printer-IP=10.0.0."_s;

/// Queues and the PCFileName values of their PPDs; without values, the file is not a valid PPD.
const std::pair<QString, QByteArrayList> queues[]{{u"Office"_s, {"OFFICE.PPD"}},
                                                  {series + u'2', {"OTHER.PPD", "KV210.PPD", "KV260.PPD"}},
                                                  {series + u"20"_s, {"KV210.PPD"}},
                                                  {series + u'3', {}}};
constexpr auto queueCount = static_cast<int>(std::size(queues));

/// Takes root's right to access every file from this thread, so that it may read as much as an ordinary user.
void becomeOrdinaryUser() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct rights[2]{};
    if (::syscall(SYS_capset, &header, rights) != 0) {
        qFatal("capset");
    }
}

}  // namespace

// Called instead of CUPS's functions (linker option --wrap).
extern "C" {
const char* __real_cupsGetPPD2(http_t* http, const char* name);
const char* __wrap_cupsGetPPD2(http_t* http, const char* name) {
    return ppdOfQueue ? ppdOfQueue(name) : __real_cupsGetPPD2(http, name);
}
const char* __real_cupsServer();
const char* __wrap_cupsServer() {
    return server != nullptr ? server : __real_cupsServer();
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
        QVERIFY(QDir().mkpath(cups_ + u"/etc/ppd"_s));
        const QByteArray form = contentOf(QStringLiteral(QUAZEL_SOURCE_DIR "/tools/kv-series.ppd.in"));
        for (const auto& [queue, values] : queues) {
            QByteArray ppd = values.isEmpty() ? "no PPD\n" : form;
            ppd.replace("@MODEL@.PPD", values.join("\"\n*PCFileName: \"")).replace("@MODEL@", "KV");
            writeFile(ppdPath(queue), ppd);
        }
        qputenv("CUPS_SERVER", socket_);
        qputenv("CUPS_SERVERROOT", (cups_ + u"/etc"_s).toUtf8());
        qputenv("TMPDIR", (cups_ + u"/tmp"_s).toUtf8());
        service_.emplace(QStringLiteral(QUAZEL_SOURCE_DIR "/tools/private-cupsd ") + cups_);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QString::fromUtf8(socket_)), 40'000);
    }

    /// An ordinary user may not read the installed PPDs, and gets copies from CUPS.
    void logsEachQueue() {
        for (const bool isRoot : {true, false}) {
            // Remove the common parts of all names and paths.
            QString log = logOf(series + u'2', isRoot).join(u'|').remove(cups_ + u"/etc/ppd/"_s);
            log.replace(QRegularExpression(cups_ + u"/tmp/\\w+"_s), u"COPY"_s);
            const auto ppd = [isRoot](const QString& name) { return isRoot ? name + u".ppd"_s : u"COPY"_s; };
            QCOMPARE(
                log.replace(series, u"KV."_s),
                u"GetInstalledPrinterList|Number of printers found in the system is 4|"
                "Model Name *** Is KV.2|Printer name is Office|PPD name is %1|Attr  value is OFFICE.PPD|"
                "Printer name is KV.2|PPD name is %2|Attr  value is OTHER.PPD|"
                "String str Value is KV.2|ModelName String was found|"
                "Printer name is KV.20|PPD name is %3|String str Value is KV.20|"
                "ModelName string was not found|Attr  value is KV210.PPD|"
                "Printer name is KV.3|PPD name is %4|PPD open failed E|Return from CUPS Printer List"_s.arg(
                    ppd(u"Office"_s), ppd(u"KV.2"_s), ppd(u"KV.20"_s), ppd(u"KV.3"_s)));
            QCOMPARE(g_PrinterAlreadyInstalled, 1);
        }
    }

    /// A copy counts only in place of an installed PPD that the user may not read, from a local service.
    void skipsOtherCopies() {
        const QByteArray copy = (home_.path() + u"/copy"_s).toUtf8();
        QVERIFY(QFile::copy(ppdPath(series + u"20"_s), QString::fromUtf8(copy)));
        ppdOfQueue = [&copy](const char*) { return copy.constData(); };
        const auto isInstalled = [this](bool isRoot) {
            (void)logOf(series + u"20"_s, isRoot);
            return g_PrinterAlreadyInstalled == 1;
        };
        QVERIFY(isInstalled(false) && !isInstalled(true));
        qputenv("CUPS_SERVERROOT", "/nowhere");
        QVERIFY(!isInstalled(false));
        qputenv("CUPS_SERVERROOT", (cups_ + u"/etc"_s).toUtf8());
        server = "127.0.0.1";
        QVERIFY(!isInstalled(false));
        server = nullptr;
    }

    /// The longest link target that fits the buffer is used; one byte more, or no link, is not.
    void skipsPpdsWithoutAUsableLink() {
        const QByteArray link = (home_.path() + u"/link"_s).toUtf8();
        const QByteArray longest = ppdPath(series + u"20"_s).toUtf8().rightJustified(1023, '/');
        ppdOfQueue = [&link](const char*) { return link.constData(); };
        // Truncated to the buffer, the second target would equal the first.
        for (const auto& [target, installed] : {std::pair{longest, 1}, {longest + 'x', 0}, {"", 0}}) {
            ::unlink(link);
            (void)(target.isEmpty() || ::symlink(target, link) == 0);
            QCOMPARE(logOf(series + u"20"_s).count(u"PPD open failed E"_s), installed == 1 ? 0 : queueCount);
            QCOMPARE(g_PrinterAlreadyInstalled, installed);
        }
    }

    /// At the first PPD request, the service stops responding, but still accepts connections; later it
    /// ends at that point.
    void survivesServiceFailures() {
        int requests = 0;
        ppdOfQueue = [&](const char*) {
            ++requests;
            service_->send(SIGSTOP);
            std::this_thread::sleep_for(std::chrono::seconds(1));
            return nullptr;
        };
        waitDivisor = 100;
        QCOMPARE(logOf(series + u"20"_s).count(u"PPD open failed E"_s), queueCount);
        QCOMPARE(requests, 1);

        QElapsedTimer timer;
        timer.start();
        QCOMPARE(logOf(u"KV210"_s).join(u'|'), noQueues_);
        QVERIFY2(timer.elapsed() < 30'000, "the silent service was contacted again");
        QVERIFY2(longestWait > 5'000 && longestWait <= 10'000, qPrintable(QString::number(longestWait)));

        service_->send(SIGCONT);
        waitDivisor = 1;
        ppdOfQueue = [this](const char* name) {
            service_.reset();
            return __real_cupsGetPPD2(CUPS_HTTP_DEFAULT, name);
        };
        const QStringList log = logOf(series + u"20"_s);
        QCOMPARE(log.filter(u"Printer name is "_s).count(), queueCount);
        QCOMPARE(log.last(), u"Return from CUPS Printer List"_s);
        g_PrinterAlreadyInstalled = 1;
        QCOMPARE(logOf(u"KV210"_s).join(u'|'), noQueues_);
        QCOMPARE(g_PrinterAlreadyInstalled, 0);
    }

  private:
    /// The log of one check, with "E" for each error number, as these are up to CUPS.
    QStringList logOf(const QString& lookedFor, bool isRoot = true) {
        g_ModelName = lookedFor;
        // A new thread each time, as CUPS remembers its server per thread.
        std::thread([isRoot] {
            if (!isRoot) {
                becomeOrdinaryUser();
            }
            GetInstalledPrinterList();
        }).join();
        return takeLog(home_).replaceInStrings(QRegularExpression(u"^(PPD open failed) [1-9]\\d*$"_s),
                                               u"\\1 E"_s);
    }

    [[nodiscard]] QString ppdPath(const QString& queue) const {
        return cups_ + u"/etc/ppd/%1.ppd"_s.arg(queue);
    }

    const QString noQueues_ =
        u"GetInstalledPrinterList|Number of printers found in the system is 0|"
        "Model Name *** Is KV210|Return from CUPS Printer List"_s;
    TemporaryHome home_;
    const QString cups_ = home_.path() + u"/cups"_s;
    const QByteArray socket_ = (cups_ + u"/cups.sock"_s).toUtf8();
    std::optional<SpawnedProgram> service_;
};

QUAZEL_TEST_MAIN(TestInstalledPrinters, QCoreApplication)

#include "test_InstalledPrinters.moc"

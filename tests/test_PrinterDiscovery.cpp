// Parsing of device IDs, and whole runs of discovery: requests, results and log. A run ends in bounded time
// with correct results, even on a hostile network or when system calls fail.

#include "discovery/DeviceId.h"
#include "discovery/ModelCatalog.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "support/Fixtures.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>

namespace {

/// Faults to inject into a run.
struct Faults {
    int socketsLeft = 1'000'000;
    int lowestDescriptor = 0;
    std::function<int()> select{};  // A result other than 0 replaces the call.
    std::function<int()> poll{};
    QByteArray checksum{};  // Hexadecimal: of datagrams sent to each socket, if set.
};
Faults faults;
std::stop_source leaving;
std::vector<std::jthread> senders;
QByteArrayList sent;  // Datagrams in hexadecimal.

int fail(int error) {
    errno = error;
    return -1;
}

}  // namespace

// Called instead of the system's functions (linker option --wrap).
#ifdef __USE_TIME64_REDIRECTS  // 64-bit time on a 32-bit system.
#define __real_select __real___select64
#define __wrap_select __wrap___select64
#endif
extern "C" {
int __real_socket(int domain, int type, int protocol);
int __real_select(int, fd_set*, fd_set*, fd_set*, timeval*);
int __real_poll(pollfd*, nfds_t, int);
ssize_t __real_sendto(int, const void*, std::size_t, int, const sockaddr*, socklen_t);

int __wrap_socket(int domain, int type, int protocol) {
    if (faults.socketsLeft-- <= 0) {
        return fail(EMFILE);
    }
    const int first = __real_socket(domain, type, protocol);
    const int moved = ::fcntl(first, F_DUPFD, faults.lowestDescriptor);
    ::close(first);
    return moved;
}
int __wrap_select(int highest, fd_set* readable, fd_set* writable, fd_set* special, timeval* wait) {
    const int result = faults.select ? faults.select() : 0;
    return result != 0 ? result : __real_select(highest, readable, writable, special, wait);
}
int __wrap_poll(pollfd* descriptors, nfds_t count, int wait) {
    return faults.poll ? faults.poll() : __real_poll(descriptors, count, wait);
}

/// Sends datagrams for two seconds. One with a wrong checksum wakes the receiver, but can't be received.
void sendDatagrams(sockaddr_in to, const QByteArray& checksum) {
    const int raw = __real_socket(AF_INET, SOCK_RAW, IPPROTO_UDP);
    // Ports, length, checksum. The kernel verifies short datagrams before it wakes the receiver.
    const QByteArray datagram = QByteArray::fromHex("00a1") +
                                QByteArray(reinterpret_cast<const char*>(&to.sin_port), 2) +
                                QByteArray::fromHex("00d0" + checksum) + QByteArray(200, 'x');
    for (int count = 0; count < 5; ++count) {
        __real_sendto(raw, datagram.constData(), 208, 0, reinterpret_cast<sockaddr*>(&to), sizeof(to));
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
    }
    ::close(raw);
}
ssize_t __wrap_sendto(int descriptor, const void* data, std::size_t size, int flags, const sockaddr* to,
                      socklen_t length) {
    const ssize_t result = __real_sendto(descriptor, data, size, flags, to, length);
    sent += QByteArray(static_cast<const char*>(data), static_cast<qsizetype>(size)).toHex();
    sockaddr_in own{};
    if (!faults.checksum.isEmpty() &&
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &length) == 0) {
        senders.emplace_back(sendDatagrams, own, faults.checksum);
    }
    return result;
}
void __wrap_perror(const char* text) {
    tDebugPrint("%s: %s\n", text, std::strerror(errno));
}
}

namespace {

const QString failed = u"recev: %1|Cant able to receive anything %1|"_s;
const QString timedOut = failed.arg(u"Resource temporarily unavailable"_s);

// The requests in the encoding of RFC 1157, with the community "public".
const QByteArray probe = "302402010004067075626c6963a117020101020100020100300c300a06062b060102012b0500";
const QByteArray deviceIdRequest =
    "302d02010004067075626c6963a02002010202010002010030153013060f2b06010401950b01020102010103010500";

/// A printer that replies to the device ID request with these bytes.
QString raw(int host, const QByteArray& reply) {
    return u"10.0.0.%1 raw "_s.arg(host) + QString::fromLatin1(reply.toHex());
}

/// The records of a device ID request.
QString queried(int host, const QString& outcome = {}) {
    return u"Waiting for receive from 2@@@ |IP address is: 10.0.0.%1|"_s.arg(host) + outcome;
}

/// The records of a printer of the series; `count` is the new length of the list.
QString added(int count, const QString& model, const QString& maker = u"Tovik"_s) {
    return u"Response is %2|Count Inside Is %1|Printer manufacture is %3|Printer modal is %2|"_s.arg(
        QString::number(count), model, maker);
}

}  // namespace

class TestPrinterDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        const rlimit limit{FD_SETSIZE + 100, FD_SETSIZE + 100};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }

    void parsesDeviceIds() {
        const QByteArray x(252, 'x');
        QCOMPARE(fieldsOf("MFG:" + x.left(251)), x.left(29) + "|||||");
        QCOMPARE(fieldsOf("MFG:" + x), "none");  // No room for the terminator.
        QCOMPARE(fieldsOf("MFG:T;CMD:X;MDL:M;CLS:P;DES:a b;SERN:A1; B2"), "T|X|M|P|a b|A1;");
        QCOMPARE(fieldsOf("MFG:T;CMD:;MDL:M"), "T|||||");
        const QByteArray cut = x.left(19) + '|';
        QCOMPARE(fieldsOf("MFG:T;CMD:" + x.left(21) + ";MDL:" + x.left(21) + ";CLS:" + x.left(20) +
                          ";DES:" + x.left(51) + ";SERN:" + x.left(66)),
                 "T|" + cut + cut + cut + x.left(49) + '|' + x.left(65));
    }

    void acceptsTheModels() {
        for (const QByteArray model : {"KV210", "KV260", "KV410", "KV460"}) {
            for (const QByteArray& text : {"TVK " + model, "TVK " + model + "N", model, model + "N"}) {
                QVERIFY2(IsQuazel(text) && modelNameOfAcceptedText(text) == model, text);
            }
            QVERIFY2(isSeriesPpdFileName(model + ".PPD") && !isSeriesPpdFileName(model + ".ppd"), model);
        }
        QVERIFY(!IsQuazel("") && !IsQuazel("KV210NN") && !IsQuazel("kv210"));
    }

    void findsPrintersOfTheSeries() {
        QCOMPARE(std::system("ip link set lan0 down"), 0);  // It must not be probed.
        const QByteArray id = deviceId(u"KV410"_s).toLatin1();
        const VirtualPrinters subnet({
            u"10.0.0.1 answers "_s + deviceId(u"TVK KV260N"_s),
            u"10.0.0.2 twice "_s + deviceId(u"KV210"_s),
            u"10.0.0.3 answers MFG:Other;CMD:X;MDL:LP1;CLS:PRINTER;DES:x;SERN:1"_s,
            u"10.0.0.5 late 300 "_s + deviceId(u"KV460N"_s),
            // The manufacturer must not be used as a format; its newline splits a record.
            raw(6, "MFG:100%n%s\nvik;CMD:X;MDL:KV410;CLS:P;DES:d;SERN:1"),
            raw(7, QByteArray(1024 - id.size(), '\0') + id + "xxx"),
        });
        GetTovikQuazelPrinters();
        QCOMPARE(std::system("ip link set lan0 up"), 0);
        QCOMPARE(takeLog(home_).join(u'|'),
                 u"GetTovikQuazelPrinters|**** 127.0.0.1|"_s + u"Waiting for Recevfrom|"_s.repeated(7) +
                     u"Out of While loop|Total Printers avialable in the Network 7|"_s +
                     queried(1, added(2, u"TVK KV260N"_s)) + queried(2, added(3, u"KV210"_s)) +
                     queried(2, added(3, u"KV210"_s)) + queried(3) + queried(5, added(4, u"KV460N"_s)) +
                     queried(6, added(5, u"KV410"_s, u"100%n%s|vik"_s)) + queried(7, added(6, u"KV410"_s)) +
                     u"Returning to UI**"_s);
        QCOMPARE(g_PrinterList->join(u'|').remove(u'\n'),
                 u"Enter IP Address Manually|Tovik KV260 @10.0.0.1|Tovik KV210 @10.0.0.2|"
                 "Tovik KV460 @10.0.0.5|Tovik KV410 @10.0.0.6|Tovik KV410 @10.0.0.7"_s);
        QCOMPARE(sent, QByteArrayList{probe} + QByteArrayList(7, deviceIdRequest));
    }

    /// There are two local addresses; collection takes at least one second on each.
    void endsInBoundedTime() {
        const auto ready = [] { return 1; };
        const auto failing = [] { return fail(ENOMEM); };
        const auto failingOnce = [count = 0]() mutable { return count++ == 0 ? fail(ENOMEM) : 0; };
        const auto leave = [] { return leaving.request_stop() ? fail(ENOMEM) : 0; };
        const auto signalAtRequest = [] { return fail(EINTR); };
        const auto timeOut = [] { return 0; };
        const QString noMemory = u"Select return -1 %1|"_s.arg(ENOMEM);
        const QString badDescriptor = failed.arg(u"Bad file descriptor"_s);
        const QString signalled = failed.arg(u"Interrupted system call"_s);
        const QString none = u"Total 0|"_s;
        const QString two = u"Total 2|"_s;
        run("no socket for the probes", {.socketsLeft = 0}, 1, none, 2);
        run("no socket for the requests", {.socketsLeft = 2}, 1, two + badDescriptor.repeated(2), 2);
        run("descriptors beyond FD_SETSIZE", {.lowestDescriptor = FD_SETSIZE}, 1, none, 2);
        run("select always fails", {.select = failing}, 1, noMemory.repeated(256) + none, 5);
        run("datagrams announced but missing", {.select = ready}, 0, timedOut.repeated(256) + none, 0);
        run("select fails once", {.select = failingOnce, .poll = timeOut}, 1,
            noMemory + two + timedOut.repeated(2), 2);
        run("signals during a request", {.poll = signalAtRequest}, 1, two + signalled.repeated(2), 2);
        run("a flood of datagrams", {.poll = timeOut}, 300, u"Total 256|"_s + timedOut.repeated(256), 0);
        run("bad checksums", {.checksum = "1234"}, 1, two + timedOut.repeated(2), 4);
        // Each datagram starts the wait again; a reply to a request counts from any sender.
        run("a datagram every 0.4 s", {.checksum = "0000"}, 1, u"Total 12|"_s, 5);
        run("leaving", {.select = leave}, 1, noMemory + none, 0);  // Last: a stop request is final.
    }

  private:
    static QByteArray fieldsOf(const QByteArray& reply) {
        const auto text = findDeviceIdText({reply.constData(), static_cast<std::size_t>(reply.size())});
        const PrinterInfo info = text ? parseDeviceId(*text) : PrinterInfo();
        const QByteArrayList fields{info.szManufacturer, info.szPrinterCommands, info.szModel,
                                    info.szPrinterClass, info.szDescription,     info.szSerialNumber};
        return text ? fields.join('|') : "none";
    }

    /// Runs discovery with silent printers. `records` are those of failures and of the total; the run takes
    /// at least `seconds`, and less than two more.
    void run(const char* name, const Faults& set, int printers, const QString& records, int seconds) {
        QStringList lines;
        for (int host = 0; host < printers; ++host) {
            lines += u"127.0.%1.%2 silent"_s.arg(host / 200 + 1).arg(host % 200);
        }
        const VirtualPrinters subnet(lines);
        QElapsedTimer timer;
        timer.start();
        faults = set;
        g_PrinterList = std::make_shared<QStringList>(u"found earlier"_s);
        GetTovikQuazelPrinters(leaving.get_token());
        faults = {};
        const qint64 elapsed = timer.elapsed();
        senders.clear();
        const QRegularExpression reported(u"^(Select|recev|Cant|Total|Returning)"_s);
        QString log = takeLog(home_).filter(reported).join(u'|');
        QVERIFY2(log.remove(u"Printers avialable in the Network "_s) == records + u"Returning to UI**"_s &&
                     *g_PrinterList == QStringList(u"Enter IP Address Manually\n"_s) &&
                     elapsed >= seconds * 1000 && elapsed < seconds * 1000 + 1900,
                 qPrintable(u"%1: %2 ms, %3"_s.arg(QLatin1String(name), QString::number(elapsed), log)));
    }

    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestPrinterDiscovery, QCoreApplication)

#include "test_PrinterDiscovery.moc"

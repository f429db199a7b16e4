// Discovery on a hostile network and on a broken machine: whatever goes wrong, a run ends in bounded time,
// with a list and a log that tell the truth.

#include "discovery/PrinterDiscovery.h"
#include "discovery/UdpSocket.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <fcntl.h>
#include <netinet/udp.h>
#include <sys/resource.h>
#include <sys/select.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What the system refuses to the thread that has set it: the discovery's, not the peer's.
struct Faults {
    int socketsLeft = 1'000'000;
    int lowestDescriptor = 0;
    std::function<int(int highest, fd_set* readable)> select{};
};
thread_local Faults faults;

int refuse(int error) {
    errno = error;
    return -1;
}

}  // namespace

// The linker puts these in front of the system's own.
extern "C" {
int __real_socket(int domain, int type, int protocol);
int __real_select(int, fd_set*, fd_set*, fd_set*, timeval*);

int __wrap_socket(int domain, int type, int protocol) {
    if (faults.socketsLeft-- <= 0) {
        return refuse(EMFILE);
    }
    const int first = __real_socket(domain, type, protocol);
    const int moved = ::fcntl(first, F_DUPFD, faults.lowestDescriptor);
    ::close(first);
    return moved;
}
int __wrap_select(int highest, fd_set* readable, fd_set* writable, fd_set* special, timeval* wait) {
    return faults.select ? faults.select(highest, readable)
                         : __real_select(highest, readable, writable, special, wait);
}
}

namespace {

const QByteArray noDeviceId = "x";
const pthread_t runner = ::pthread_self();

void send(int descriptor, const QByteArray& bytes, const sockaddr_in& to) {
    ::sendto(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0,
             reinterpret_cast<const sockaddr*>(&to), sizeof(to));
}

using Reaction = std::function<void(int descriptor, bool probe, const sockaddr_in& from)>;

/// Whatever answers on port 161 of all local addresses, in a thread of its own.
void serve(const std::stop_token& stop, const UdpSocket& socket, const Reaction& reaction) {
    constexpr ssize_t probeSize = 38;
    std::array<char, 64> request;
    while (!stop.stop_requested()) {
        sockaddr_in from{};
        socklen_t length = sizeof(from);
        const ssize_t size = ::recvfrom(socket.descriptor(), request.data(), request.size(), 0,
                                        reinterpret_cast<sockaddr*>(&from), &length);
        if (size > 0) {
            reaction(socket.descriptor(), size == probeSize, from);
        }
    }
}

void answer(int descriptor, bool probe, const sockaddr_in& from) {
    send(descriptor, probe ? noDeviceId : deviceId(u"KV210"_s).toLatin1(), from);
}

void sendSignal() {
    std::this_thread::sleep_for(100ms);
    ::pthread_kill(runner, SIGUSR1);
}

void answerAfterASignal(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        sendSignal();
        std::this_thread::sleep_for(100ms);
    }
    answer(descriptor, probe, from);
}

void answerTheProbeAndSendASignal(int descriptor, bool probe, const sockaddr_in& from) {
    probe ? answer(descriptor, probe, from) : sendSignal();
}

/// Some hundred thousand datagrams a second.
void flood(int descriptor, bool probe, const sockaddr_in& from) {
    for (int sent = 0; sent < (probe ? 2'000 : 1); ++sent) {
        send(descriptor, noDeviceId, from);
    }
}

/// Datagrams whose checksum is wrong; each wakes the receiver and gives it nothing.
void sendBadChecksums(int times, std::chrono::milliseconds pause, const sockaddr_in& from) {
    const int raw = ::socket(AF_INET, SOCK_RAW, IPPROTO_UDP);
    struct {
        udphdr header{};
        std::array<char, 200> payload{};  // Short ones are checked before anybody is woken.
    } datagram;
    datagram.header.uh_dport = from.sin_port;
    datagram.header.uh_sport = htons(161);
    datagram.header.uh_ulen = htons(sizeof(datagram));
    datagram.header.uh_sum = htons(0x1234);
    for (int sent = 0; sent < times; ++sent) {
        send(raw, {reinterpret_cast<const char*>(&datagram), sizeof(datagram)}, from);
        std::this_thread::sleep_for(pause);
    }
    ::close(raw);
}

void answerWithBadChecksums(int descriptor, bool probe, const sockaddr_in& from) {
    probe ? send(descriptor, noDeviceId, from) : sendBadChecksums(5, 400ms, from);
}

/// As many as would fill the count of failed receives, were they counted.
void answerAfterBadChecksums(int descriptor, bool probe, const sockaddr_in& from) {
    sendBadChecksums(probe ? 400 : 0, 1ms, from);
    answer(descriptor, probe, from);
}

}  // namespace

class TestDiscoveryFaults : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        std::signal(SIGUSR1, [](int) {});
        const rlimit limit{FD_SETSIZE + 100, FD_SETSIZE + 100};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }

    void runEnds_data() {
        QTest::addColumn<Faults>("refused");
        QTest::addColumn<Reaction>("reaction");
        QTest::addColumn<QString>("records");  // Of what went wrong, and the total.
        QTest::addColumn<int>("printers");
        QTest::addColumn<int>("seconds");  // At least; at most a second and a half more.
        const auto onlyWaits = [](int highest, fd_set* readable) {
            timeval second{1, 0};
            return highest > 0 ? refuse(EBADF) : __real_select(0, readable, nullptr, nullptr, &second);
        };
        const auto alwaysSignals = [](int, fd_set*) { return refuse(EINTR); };
        const auto alwaysReady = [](int, fd_set*) { return 1; };
        const Reaction silence = [](int, bool, const sockaddr_in&) {};
        const QString nothing = u"Total 0|"_s;
        const QString two = u"Total 2|"_s;
        const QString failed = u"Cant able to receive anything %1|"_s;
        const QString badDescriptor = failed.arg(u"Bad file descriptor"_s);
        const QString timedOut = failed.arg(u"Resource temporarily unavailable"_s);
        const QString badSelect = u"Select return -1 %1|"_s.arg(EBADF);
        const QString interrupted = u"Select return -1 %1|"_s.arg(EINTR);
        const auto row = [](const char* name, const Faults& refused, const Reaction& reaction,
                            const QString& records, int printers, int seconds) {
            QTest::newRow(name) << refused << reaction << records << printers << seconds;
        };
        row("no socket for the probes", {.socketsLeft = 0}, answer, nothing, 0, 2);
        row("no socket for the questions", {.socketsLeft = 2}, answer, two + badDescriptor.repeated(2), 0, 2);
        row("sockets that fit no descriptor set", {.lowestDescriptor = FD_SETSIZE}, answer, nothing, 0, 2);
        row("select fails on every socket", {.select = onlyWaits}, answer, badSelect.repeated(2) + nothing, 0,
            2);
        row("select always fails", {.select = alwaysSignals}, answer, interrupted.repeated(256) + nothing, 0,
            0);
        row("announced but not there", {.select = alwaysReady}, silence, timedOut.repeated(256) + nothing, 0,
            0);
        row("signals arrive", {}, answerAfterASignal, interrupted.repeated(2) + two, 2, 2);
        row("signals arrive at a question", {}, answerTheProbeAndSendASignal,
            two + failed.arg(u"Interrupted system call"_s).repeated(2), 0, 2);
        row("a flood of datagrams", {}, flood, u"Total 256|"_s, 0, 0);
        row("answers with bad checksums", {}, answerWithBadChecksums, two + timedOut.repeated(2), 0, 4);
        row("an answer after bad checksums", {}, answerAfterBadChecksums, two, 2, 2);
    }
    void runEnds() {
        QFETCH(Reaction, reaction);
        QFETCH(int, seconds);
        QFETCH(QString, records);
        QFETCH(Faults, refused);
        const UdpSocket socket;
        const sockaddr_in name = socketAddress({INADDR_ANY}, 161);
        const timeval wait{0, 20'000};
        ::setsockopt(socket.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof(wait));
        QCOMPARE(::bind(socket.descriptor(), reinterpret_cast<const sockaddr*>(&name), sizeof(name)), 0);
        const std::jthread peer([&](const std::stop_token& stop) { serve(stop, socket, reaction); });
        QElapsedTimer timer;
        timer.start();
        faults = refused;
        GetTovikQuazelPrinters();
        faults = {};
        const qint64 elapsed = timer.elapsed();
        const QRegularExpression told(u"^(Select|Cant|Total|Returning)"_s);
        QCOMPARE(takeLog(home_).filter(told).join(u'|').remove(u"Printers avialable in the Network "_s),
                 records + u"Returning to UI**"_s);
        QTEST(static_cast<int>(g_PrinterList->count()) - 1, "printers");
        QVERIFY2(elapsed >= seconds * 1000 && elapsed < seconds * 1000 + 1500,
                 qPrintable(QString::number(elapsed)));
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestDiscoveryFaults, QCoreApplication)

#include "test_DiscoveryFaults.moc"

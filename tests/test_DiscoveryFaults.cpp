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
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <limits>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

/// What the system refuses to the thread that has set it: the discovery's, not the peer's.
struct Faults {
    int socketsLeft = std::numeric_limits<int>::max();
    int sendsLeft = std::numeric_limits<int>::max();
    int lowestDescriptor = 0;
    std::function<int(int highest, fd_set* readable)> select;
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
ssize_t __real_sendto(int, const void*, std::size_t, int, const sockaddr*, socklen_t);
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
ssize_t __wrap_sendto(int fd, const void* data, std::size_t size, int flags, const sockaddr* to,
                      socklen_t length) {
    return faults.sendsLeft-- <= 0 ? refuse(EPERM) : __real_sendto(fd, data, size, flags, to, length);
}
int __wrap_select(int highest, fd_set* readable, fd_set* writable, fd_set* special, timeval* wait) {
    return faults.select ? faults.select(highest, readable)
                         : __real_select(highest, readable, writable, special, wait);
}
}

namespace {

constexpr ssize_t probeSize = 38;
const QByteArray noDeviceId = "x";
const pthread_t runner = ::pthread_self();
std::stop_source leaving;
std::jthread sender;

void send(int descriptor, const QByteArray& bytes, const sockaddr_in& to) {
    ::sendto(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0,
             reinterpret_cast<const sockaddr*>(&to), sizeof(to));
}

/// Sends a datagram that often, after a pause each time, while the peer is there.
void repeat(int times, std::chrono::milliseconds pause, int descriptor, const sockaddr_in& to) {
    sender = std::jthread([=](const std::stop_token& stop) {
        for (int sent = 0; sent < times && !stop.stop_requested(); ++sent) {
            std::this_thread::sleep_for(pause);
            send(descriptor, noDeviceId, to);
        }
    });
}

using Reaction = std::function<void(int descriptor, bool probe, const sockaddr_in& from)>;

/// Whatever answers on port 161 of all local addresses, in a thread of its own.
class Peer {
  public:
    explicit Peer(Reaction reaction) : reaction_(std::move(reaction)) {
        const sockaddr_in name = socketAddress({INADDR_ANY}, 161);
        const timeval wait{0, 20'000};
        ::setsockopt(socket_.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof(wait));
        QCOMPARE(::bind(socket_.descriptor(), reinterpret_cast<const sockaddr*>(&name), sizeof(name)), 0);
        thread_ = std::jthread([this](const std::stop_token& stop) { serve(stop); });
    }
    ~Peer() {
        thread_ = {};
        sender = {};
    }

  private:
    void serve(const std::stop_token& stop) {
        std::array<char, 64> request;
        while (!stop.stop_requested()) {
            sockaddr_in from{};
            socklen_t length = sizeof(from);
            const ssize_t size = ::recvfrom(socket_.descriptor(), request.data(), request.size(), 0,
                                            reinterpret_cast<sockaddr*>(&from), &length);
            if (size > 0) {
                reaction_(socket_.descriptor(), size == probeSize, from);
            }
        }
    }

    Reaction reaction_;
    UdpSocket socket_;
    std::jthread thread_;
};

void answer(int descriptor, bool probe, const sockaddr_in& from) {
    send(descriptor, probe ? noDeviceId : deviceId(u"KV210"_s).toLatin1(), from);
}

void answerAfterASignal(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        std::this_thread::sleep_for(100ms);
        ::pthread_kill(runner, SIGUSR1);
        std::this_thread::sleep_for(100ms);
    }
    answer(descriptor, probe, from);
}

void answerTheProbeAndSendASignal(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        answer(descriptor, probe, from);
    } else {
        std::this_thread::sleep_for(100ms);
        ::pthread_kill(runner, SIGUSR1);
    }
}

void setBridge(const std::string& state) {
    QCOMPARE(std::system(("ip link set lan0 " + state).c_str()), 0);
}

void answerAndTakeTheBridgeDown(int descriptor, bool probe, const sockaddr_in& from) {
    answer(descriptor, probe, from);
    setBridge("down");
}

/// Without a pause some hundred thousand datagrams a second; ends by itself.
Reaction flood(int times, std::chrono::milliseconds pause) {
    return [=](int descriptor, bool probe, const sockaddr_in& from) {
        if (probe) {
            repeat(times, pause, descriptor, from);
        } else {
            send(descriptor, noDeviceId, from);
        }
    };
}

void leaveWhileDatagramsCome(int descriptor, bool /*probe*/, const sockaddr_in& from) {
    std::this_thread::sleep_for(100ms);
    leaving.request_stop();
    repeat(20, 200ms, descriptor, from);
}

/// Ten responders, none of whom has an answer.
void leaveAtTheFirstQuestion(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        repeat(5, 0ms, descriptor, from);
    } else {
        leaving.request_stop();
    }
}

/// Sends one datagram after the other whose checksum is wrong; each wakes the receiver and gives it nothing.
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
        send(raw, QByteArray(reinterpret_cast<const char*>(&datagram), sizeof(datagram)), from);
        std::this_thread::sleep_for(pause);
    }
    ::close(raw);
}

void answerWithBadChecksums(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        send(descriptor, noDeviceId, from);
    } else {
        sendBadChecksums(5, 400ms, from);
    }
}

/// As many as would fill the count of failed receives, were they counted.
void answerAfterBadChecksums(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        sendBadChecksums(400, 1ms, from);
    }
    answer(descriptor, probe, from);
}

void allowDescriptors(rlim_t count) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = count;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

using Step = std::function<void()>;

}  // namespace

class TestDiscoveryFaults : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        std::signal(SIGUSR1, [](int) {});
        faults = {};
        leaving = {};
        allowDescriptors(FD_SETSIZE + 100);
        setBridge("up");
    }

    void runEnds_data() {
        QTest::addColumn<Step>("fault");
        QTest::addColumn<Reaction>("reaction");
        QTest::addColumn<QString>("records");  // Of what went wrong, and the total.
        QTest::addColumn<int>("printers");
        QTest::addColumn<int>("seconds");  // At least; at most a second and a half more.
        const auto sockets = [](int left) { return Step([=] { faults.socketsLeft = left; }); };
        const auto sends = [](int left) { return Step([=] { faults.sendsLeft = left; }); };
        const auto selects = [](const auto& select) { return Step([=] { faults.select = select; }); };
        const Step none = [] {};
        const Step noDescriptors = [] { allowDescriptors(0); };
        const Step highDescriptors = [] { faults.lowestDescriptor = FD_SETSIZE; };
        const Step onlyWaits = selects([](int highest, fd_set* readable) {
            timeval second{1, 0};
            return highest > 0 ? refuse(EBADF) : __real_select(0, readable, nullptr, nullptr, &second);
        });
        const Step alwaysSignals = selects([](int, fd_set*) { return refuse(EINTR); });
        const Step alwaysReady = selects([](int, fd_set*) { return 1; });
        const Reaction silence = [](int, bool, const sockaddr_in&) {};
        const QString nothing = u"Total 0|"_s;
        const QString two = u"Total 2|"_s;
        const QString badDescriptor = u"Cant able to receive anything Bad file descriptor|"_s;
        const QString timedOut = u"Cant able to receive anything Resource temporarily unavailable|"_s;
        const QString badSelect = u"Select return -1 %1|"_s.arg(EBADF);
        const QString interrupted = u"Select return -1 %1|"_s.arg(EINTR);

        const auto row = [](const char* name, const Step& fault, const Reaction& reaction,
                            const QString& records, int printers, int seconds) {
            QTest::newRow(name) << fault << reaction << records << printers << seconds;
        };
        row("no socket for the probes", sockets(0), answer, nothing, 0, 2);
        row("no socket for the questions", sockets(2), answer, two + badDescriptor.repeated(2), 0, 2);
        row("sockets that fit no descriptor set", highDescriptors, answer, nothing, 0, 2);
        row("probes are not sent", sends(0), answer, nothing, 0, 2);
        row("questions are not sent", sends(2), answer, two + timedOut.repeated(2), 0, 4);
        row("select fails on every socket", onlyWaits, answer, badSelect.repeated(2) + nothing, 0, 2);
        row("select always fails", alwaysSignals, answer, interrupted.repeated(256) + nothing, 0, 0);
        row("announced but not there", alwaysReady, silence, timedOut.repeated(256) + nothing, 0, 0);
        row("signals arrive", none, answerAfterASignal, interrupted.repeated(2) + two, 2, 2);
        row("signals arrive at a question", none, answerTheProbeAndSendASignal,
            two + u"Cant able to receive anything Interrupted system call|"_s.repeated(2), 0, 2);
        row("an interface goes down", none, answerAndTakeTheBridgeDown, u"Total 1|"_s, 1, 2);
        row("a flood of datagrams", none, flood(200'000, 0ms), u"Total 256|"_s, 0, 0);
        row("a drip starts the quiet time anew", none, flood(300, 10ms), u"Total 256|"_s, 0, 2);
        row("answers with bad checksums", none, answerWithBadChecksums, two + timedOut.repeated(2), 0, 4);
        row("an answer after bad checksums", none, answerAfterBadChecksums, two, 2, 2);
        row("left while datagrams come", none, leaveWhileDatagramsCome, u"Total 1|"_s, 0, 0);
        row("left at a question", none, leaveAtTheFirstQuestion, u"Total 10|"_s + timedOut, 0, 3);
        // Last, as the sanitizers need descriptors for what they check the first time.
        row("no descriptors, not even for the log", noDescriptors, answer, {}, 0, 0);
    }
    void runEnds() {
        QFETCH(Step, fault);
        QFETCH(Reaction, reaction);
        QFETCH(QString, records);
        QFETCH(int, seconds);
        const Peer peer(reaction);
        QElapsedTimer timer;
        fault();
        timer.start();
        GetTovikQuazelPrinters(leaving.get_token());
        const qint64 elapsed = timer.elapsed();
        allowDescriptors(FD_SETSIZE + 100);
        const QRegularExpression told(u"^(Select|Cant|Total|Returning)"_s);
        QCOMPARE(takeLog(home_).filter(told).join(u'|').remove(u"Printers avialable in the Network "_s),
                 records.isEmpty() ? records : records + u"Returning to UI**"_s);
        QCOMPARE(g_PrinterList->first(), u"Enter IP Address Manually\n"_s);
        QTEST(static_cast<int>(g_PrinterList->count()) - 1, "printers");
        QVERIFY2(elapsed >= seconds * 1000 && elapsed < seconds * 1000 + 1500,
                 qPrintable(QString::number(elapsed)));
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestDiscoveryFaults, QCoreApplication)

#include "test_DiscoveryFaults.moc"

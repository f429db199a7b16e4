// Discovery on a hostile network and on a broken machine: whatever goes wrong, a run ends in bounded time,
// with a list and a log that tell the truth.

#include "discovery/PrinterDiscovery.h"
#include "discovery/ProbeCollection.h"
#include "discovery/UdpSocket.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <fcntl.h>
#include <ifaddrs.h>
#include <netinet/udp.h>
#include <sys/resource.h>
#include <sys/select.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

/// What the system refuses to the thread that has set it: the discovery's, not the peer's.
struct Faults {
    bool interfaces = false;
    int socketsLeft = std::numeric_limits<int>::max();
    int sendsLeft = std::numeric_limits<int>::max();
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
int __real_getifaddrs(ifaddrs** list);
int __real_socket(int domain, int type, int protocol);
ssize_t __real_sendto(int, const void*, std::size_t, int, const sockaddr*, socklen_t);
int __real_select(int, fd_set*, fd_set*, fd_set*, timeval*);

int __wrap_getifaddrs(ifaddrs** list) {
    return faults.interfaces ? refuse(ENOMEM) : __real_getifaddrs(list);
}
int __wrap_socket(int domain, int type, int protocol) {
    return faults.socketsLeft-- <= 0 ? refuse(EMFILE) : __real_socket(domain, type, protocol);
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

constexpr std::size_t probeSize = 38;
const QByteArray noDeviceId = "x";

void send(int descriptor, const QByteArray& bytes, const sockaddr_in& to) {
    ::sendto(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0,
             reinterpret_cast<const sockaddr*>(&to), sizeof(to));
}

/// Sends a datagram that often, after a pause each time.
std::jthread repeat(int times, std::chrono::milliseconds pause, int descriptor, const sockaddr_in& to) {
    return std::jthread([=](const std::stop_token& stop) {
        for (int sent = 0; sent < times && !stop.stop_requested(); ++sent) {
            std::this_thread::sleep_for(pause);
            send(descriptor, noDeviceId, to);
        }
    });
}

/// Whatever answers on port 161 of all local addresses, in a thread of its own.
class Peer {
  public:
    using Reaction = std::function<void(int descriptor, bool probe, const sockaddr_in& from)>;

    explicit Peer(Reaction reaction) : reaction_(std::move(reaction)) {
        const sockaddr_in name = socketAddress({INADDR_ANY}, 161);
        const timeval wait{0, 20'000};
        ::setsockopt(socket_.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof(wait));
        if (::bind(socket_.descriptor(), reinterpret_cast<const sockaddr*>(&name), sizeof(name)) != 0) {
            qFatal("port 161 is not free");
        }
        thread_ = std::jthread([this](const std::stop_token& stop) { serve(stop); });
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
                reaction_(socket_.descriptor(), static_cast<std::size_t>(size) == probeSize, from);
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

/// Answers the probe of one local address after the signals that are on their way have come.
void answerLate(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        std::this_thread::sleep_for(300ms);
    }
    answer(descriptor, probe, from);
}

void setBridge(const char* state) {
    if (std::system((std::string("ip link set lan0 ") + state).c_str()) != 0) {
        qFatal("can't set the interface %s", state);
    }
}

void answerAndTakeTheBridgeDown(int descriptor, bool probe, const sockaddr_in& from) {
    answer(descriptor, probe, from);
    setBridge("down");
}

/// As fast as a machine can send, some hundred thousand datagrams a second; ends by itself.
void flood(int descriptor, bool probe, const sockaddr_in& from) {
    static std::jthread sender;
    if (probe) {
        sender = repeat(200'000, 0ms, descriptor, from);
    } else {
        send(descriptor, noDeviceId, from);
    }
}

/// Answers the question with one datagram after the other whose checksum is wrong; each wakes the receiver
/// and gives it nothing.
void answerWithBadChecksums(int descriptor, bool probe, const sockaddr_in& from) {
    if (probe) {
        send(descriptor, noDeviceId, from);
        return;
    }
    const int raw = ::socket(AF_INET, SOCK_RAW, IPPROTO_UDP);
    struct {
        udphdr header{};
        std::array<char, 200> payload{};  // Short ones are checked before anybody is woken.
    } datagram;
    datagram.header.uh_dport = from.sin_port;
    datagram.header.uh_sport = htons(161);
    datagram.header.uh_ulen = htons(sizeof(datagram));
    datagram.header.uh_sum = htons(0x1234);
    for (int sent = 0; sent < 5; ++sent) {
        send(raw, QByteArray(reinterpret_cast<const char*>(&datagram), sizeof(datagram)), from);
        std::this_thread::sleep_for(400ms);
    }
    ::close(raw);
}

/// Descriptors that are in the way, and the limit as it was.
class Descriptors {
  public:
    Descriptors() { ::getrlimit(RLIMIT_NOFILE, &limit_); }
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;
    ~Descriptors() {
        ::setrlimit(RLIMIT_NOFILE, &limit_);
        for (const int descriptor : taken_) {
            ::close(descriptor);
        }
    }

    void allow(rlim_t count) {
        const rlimit limit{count, limit_.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    void take(int count) {
        for (int index = 0; index < count; ++index) {
            taken_.push_back(::open("/dev/null", O_RDONLY));
            QVERIFY(taken_.back() >= 0);
        }
    }

  private:
    rlimit limit_{};
    std::vector<int> taken_;
};

using Step = std::function<void()>;

const QString total = u"Total Printers avialable in the Network %1"_s;
const QString returning = u"Returning to UI**"_s;
const QString selectFailed = u"Select return -1 %1"_s;
const QString nothingReceived = u"Cant able to receive anything %1"_s;
const QString timedOut = nothingReceived.arg(u"Resource temporarily unavailable"_s);

}  // namespace

class TestDiscoveryFaults : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        faults = {};
        descriptors_.emplace();
    }
    void cleanup() {
        faults = {};
        signals_ = {};
        descriptors_.reset();
        setBridge("up");
    }

    void runEnds_data() {
        QTest::addColumn<Step>("fault");
        QTest::addColumn<Peer::Reaction>("reaction");
        QTest::addColumn<QStringList>("records");  // Of what went wrong, and the last two.
        QTest::addColumn<int>("printers");
        QTest::addColumn<int>("seconds");  // At least; at most a second and a half more.
        const Step none = [] {};
        const auto row = [&](const char* name, const Step& fault, const Peer::Reaction& reaction,
                             const QStringList& failures, int responders, const QStringList& questions,
                             int printers, int seconds) {
            QTest::newRow(name) << fault << reaction
                                << failures + QStringList{total.arg(responders)} + questions +
                                       QStringList{returning}
                                << printers << seconds;
        };
        const auto twice = [](const QString& record) { return QStringList{record, record}; };

        row(
            "no list of interfaces", [] { faults.interfaces = true; }, answer, {}, 0, {}, 0, 0);
        row(
            "no socket for the probes", [] { faults.socketsLeft = 0; }, answer, {}, 0, {}, 0, 2);
        row(
            "no socket for the questions", [] { faults.socketsLeft = 2; }, answer, {}, 2,
            twice(nothingReceived.arg(u"Bad file descriptor"_s)), 0, 2);
        row(
            "sockets that fit no descriptor set",
            [this] {
                descriptors_->allow(FD_SETSIZE + 100);
                descriptors_->take(FD_SETSIZE);
            },
            answer, {}, 0, {}, 0, 2);
        row(
            "probes are not sent", [] { faults.sendsLeft = 0; }, answer, {}, 0, {}, 0, 2);
        row(
            "questions are not sent", [] { faults.sendsLeft = 2; }, answer, {}, 2, twice(timedOut), 0, 4);
        row(
            "select fails on every socket",
            [] {
                faults.select = [](int highest, fd_set* readable) {
                    timeval second{1, 0};
                    return highest > 0 ? refuse(EBADF)
                                       : __real_select(0, readable, nullptr, nullptr, &second);
                };
            },
            answer, twice(selectFailed.arg(EBADF)), 0, {}, 0, 2);
        row(
            "select always fails", [] { faults.select = [](int, fd_set*) { return refuse(EINTR); }; }, answer,
            QStringList(256, selectFailed.arg(EINTR)), 0, {}, 0, 0);
        row(
            "datagrams announced that are not there",
            [] {
                faults.select = [](int, fd_set*) { return 1; };
                faults.sendsLeft = 0;
            },
            answer, QStringList(256, timedOut), 0, {}, 0, 0);
        row(
            "signals arrive",
            [this] {
                sendSignals({100ms, 100ms});
            },
            answerLate, twice(selectFailed.arg(EINTR)), 2, {}, 2, 2);
        row("an interface goes down", none, answerAndTakeTheBridgeDown, {}, 1, {}, 1, 2);
        row("a flood of datagrams", none, flood, {}, 256, {}, 0, 0);
        row("answers with bad checksums", none, answerWithBadChecksums, {}, 2, twice(timedOut), 0, 4);
    }
    void runEnds() {
        QFETCH(Step, fault);
        QFETCH(Peer::Reaction, reaction);
        QFETCH(int, seconds);
        const Peer peer(reaction);
        QElapsedTimer timer;
        fault();
        timer.start();
        GetTovikQuazelPrinters();
        const qint64 elapsed = timer.elapsed();
        QTEST(takeLog(home_).filter(QRegularExpression(u"^(Select|Cant|Total|Returning)"_s)), "records");
        QCOMPARE(g_PrinterList->first(), u"Enter IP Address Manually\n"_s);
        QTEST(static_cast<int>(g_PrinterList->count()) - 1, "printers");
        QVERIFY2(elapsed >= seconds * 1000 && elapsed < seconds * 1000 + 1500,
                 qPrintable(QString::number(elapsed)));
    }

    /// Not even the log and the list of interfaces can be opened.
    void runEndsWithoutDescriptors() {
        descriptors_->allow(0);
        GetTovikQuazelPrinters();
        descriptors_.reset();
        QCOMPARE(g_PrinterList->count(), 1);
        QVERIFY(!QFile::exists(home_.log()));
    }

    /// Every datagram starts the quiet time anew, and a full table ends it.
    void dripIsEndedByTheTable() {
        std::jthread sender;
        const Peer peer([&sender](int descriptor, bool, const sockaddr_in& from) {
            sender = repeat(6, 900ms, descriptor, from);
        });
        ResponderTable responders;
        responders.count = ResponderTable::capacity - 3;
        QElapsedTimer timer;
        timer.start();
        collectResponders(responders, std::stop_token());
        QCOMPARE(responders.count, ResponderTable::capacity);
        QVERIFY2(timer.elapsed() >= 2700 && timer.elapsed() < 3400,
                 qPrintable(QString::number(timer.elapsed())));
    }

    /// The peer answers one question after the other with silence, or goes on answering the probe.
    void leavesInTime() {
        for (const auto& [replies, pause, leavingAfter] :
             {std::tuple{20, 200ms, 500}, std::tuple{5, 0ms, 3300}}) {
            std::jthread sender;
            const Peer peer([&](int descriptor, bool probe, const sockaddr_in& from) {
                if (probe) {
                    sender = repeat(replies, pause, descriptor, from);
                }
            });
            std::stop_source leaving;
            const std::jthread leaver([&, delay = std::chrono::milliseconds(leavingAfter)] {
                std::this_thread::sleep_for(delay);
                leaving.request_stop();
            });
            QElapsedTimer timer;
            timer.start();
            GetTovikQuazelPrinters(leaving.get_token());
            QVERIFY2(timer.elapsed() < leavingAfter + 1500, qPrintable(QString::number(timer.elapsed())));
            QCOMPARE(takeLog(home_).last(), returning);
        }
    }

  private:
    /// Interrupts the thread that calls it, each time after such a pause.
    void sendSignals(const std::vector<std::chrono::milliseconds>& pauses) {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &action, nullptr);
        signals_ = std::jthread([pauses, target = ::pthread_self()] {
            for (const auto& pause : pauses) {
                std::this_thread::sleep_for(pause);
                ::pthread_kill(target, SIGUSR1);
            }
        });
    }

    TemporaryHome home_;
    std::optional<Descriptors> descriptors_;
    std::jthread signals_;
};

QUAZEL_TEST_MAIN(TestDiscoveryFaults, QCoreApplication)

#include "test_DiscoveryFaults.moc"

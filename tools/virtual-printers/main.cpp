// A subnet of SNMP printers in one process, for the demonstration and the tests.
// Each printer answers from its own UDP socket on ADDRESS:161; one more on 0.0.0.0:161 hears the probes
// sent to the all-hosts group 224.0.0.1, for every printer. FILE is read in printer-list,
// the messages are in snmp-agent-message.
// Limits: IPv4; 300 printers; device ids of 1400 bytes; every ADDRESS has to be local to this machine.
// A second process on the same addresses is not noticed, as SO_REUSEADDR lets it bind.
#include "printer-list.h"
#include "snmp-agent-message.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#ifndef QUAZEL_VERSION
#error "The build defines QUAZEL_VERSION as a string literal."
#endif

namespace {

using Clock = std::chrono::steady_clock;
using snmp::Bytes;

constexpr std::uint16_t snmpPort = 161;
constexpr in_addr_t allHosts = 0xE0000001;  // 224.0.0.1
constexpr rlim_t descriptorsNeeded = maxPrinters + 20;

constexpr std::string_view usage = R"(Usage: virtual-printers [OPTIONS] FILE

Is a subnet of SNMP printers. FILE ("-" is standard input) has one printer a line:
  ADDRESS answers DEVICE-ID
  ADDRESS twice DEVICE-ID              answers the probe twice
  ADDRESS silent                       answers the probe, then never again
  ADDRESS late MILLISECONDS DEVICE-ID  sends the device id that much later
  ADDRESS raw HEXBYTES                 sends these bytes for a device id ("-": none)
Blank lines and lines that begin with # do not count. Prints "ready" when every
printer listens; ends on SIGTERM and SIGINT.

  --record FILE  append "ADDRESS HEXBYTES" for each request to FILE
  --help         show this text
  --version      show the version

Exit status: 0 ended by a signal; 1 the system refused something; 2 wrong usage or FILE.
)";

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }

    [[nodiscard]] int get() const { return fd_; }

  private:
    int fd_;
};

Descriptor bindSocket(const std::string& address) {
    const std::string where = "cannot bind " + address + ":" + std::to_string(snmpPort);
    Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (socket.get() < 0) {
        throwErrno(where);
    }
    // Without SO_REUSEADDR the socket on 0.0.0.0 and those of the printers exclude each other.
    const int on = 1;
    if (::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        ::setsockopt(socket.get(), IPPROTO_IP, IP_PKTINFO, &on, sizeof on) != 0) {
        throwErrno(where);
    }
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(snmpPort);
    ::inet_pton(AF_INET, address.c_str(), &name.sin_addr);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
        throwErrno(where);
    }
    return socket;
}

struct Datagram {
    Bytes bytes;
    sockaddr_in sender{};
    in_addr_t destination = INADDR_ANY;
};

std::optional<Datagram> receive(int fd) {
    // One more than fits, so that no request is cut short on its way to the record.
    static std::array<std::uint8_t, snmp::maxDatagram + 1> buffer;
    alignas(cmsghdr) std::array<std::byte, CMSG_SPACE(sizeof(in_pktinfo))> control{};
    Datagram datagram;
    iovec part{buffer.data(), buffer.size()};
    msghdr message{};
    message.msg_name = &datagram.sender;
    message.msg_namelen = sizeof datagram.sender;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t size = ::recvmsg(fd, &message, 0);
    if (size < 0) {
        return std::nullopt;
    }
    datagram.bytes.assign(buffer.begin(), buffer.begin() + size);
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr;
         header = CMSG_NXTHDR(&message, header)) {
        if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_PKTINFO) {
            in_pktinfo info{};
            std::memcpy(&info, CMSG_DATA(header), sizeof info);
            datagram.destination = ntohl(info.ipi_addr.s_addr);
        }
    }
    return datagram;
}

std::string hexOf(const Bytes& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text.empty() ? "-" : text;
}

class Record {
  public:
    explicit Record(const std::string& path) : path_(path) {
        if (path.empty()) {
            return;
        }
        file_ = Descriptor(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
        if (file_.get() < 0) {
            throwErrno("cannot write " + path);
        }
    }

    // One write a line, so that a test that reads along never sees half of one.
    void append(const std::string& address, const Bytes& request) const {
        const std::string line = address + " " + hexOf(request) + "\n";
        if (file_.get() >= 0 && ::write(file_.get(), line.data(), line.size()) != std::ssize(line)) {
            throwErrno("cannot write " + path_);
        }
    }

  private:
    std::string path_;
    Descriptor file_;
};

volatile std::sig_atomic_t stopRequested = 0;

class Subnet {
  public:
    Subnet(std::vector<Printer> printers, const std::string& recordPath)
        : record_(recordPath), groupSocket_(bindSocket("0.0.0.0")), epoll_(::epoll_create1(EPOLL_CLOEXEC)) {
        if (epoll_.get() < 0) {
            throwErrno("epoll");
        }
        watch(groupSocket_, nullptr);
        stations_.reserve(printers.size());  // Their addresses are handed to the kernel.
        for (Printer& printer : printers) {
            Descriptor socket = bindSocket(printer.address);
            stations_.push_back({std::move(printer), std::move(socket)});
            watch(stations_.back().socket, &stations_.back());
        }
    }

    // The signals that stop it are blocked outside ppoll(), so none is missed.
    void run(const sigset_t& whileWaiting) {
        while (stopRequested == 0) {
            std::array<epoll_event, 16> events;
            const int count = ::epoll_pwait(epoll_.get(), events.data(), static_cast<int>(events.size()),
                                            millisecondsToNextReply(), &whileWaiting);
            if (count < 0 && errno != EINTR) {
                throwErrno("epoll");
            }
            sendDueReplies();
            for (int i = 0; i < count; ++i) {
                const auto* const station =
                    static_cast<const Station*>(events[static_cast<std::size_t>(i)].data.ptr);
                if (station == nullptr) {
                    hearGroup();
                } else {
                    hearPrinter(*station);
                }
            }
        }
    }

  private:
    struct Station {
        Printer printer;
        Descriptor socket;
    };

    struct Reply {
        const Station* from;
        sockaddr_in to;
        Bytes bytes;
    };

    /// With epoll a request costs the same however many printers there are, as on a network of real ones.
    void watch(const Descriptor& socket, Station* station) const {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.ptr = station;
        if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, socket.get(), &event) != 0) {
            throwErrno("epoll");
        }
    }

    void hearGroup() {
        while (const auto datagram = receive(groupSocket_.get())) {
            // Unicast comes here too, for a local address that has no printer; nobody answers there.
            if (datagram->destination != allHosts) {
                continue;
            }
            record_.append("224.0.0.1", datagram->bytes);
            const auto request = snmp::parseRequest(datagram->bytes);
            if (!request) {
                continue;
            }
            const bool probe = !snmp::asksForDeviceId(*request);
            for (const Station& station : stations_) {
                const Behaviour behaviour = station.printer.behaviour;
                if (probe || behaviour != Behaviour::Silent) {
                    answer(station, *request, datagram->sender);
                }
                if (probe && behaviour == Behaviour::Twice) {
                    answer(station, *request, datagram->sender);
                }
            }
        }
    }

    void hearPrinter(const Station& station) {
        while (const auto datagram = receive(station.socket.get())) {
            record_.append(station.printer.address, datagram->bytes);
            const auto request = snmp::parseRequest(datagram->bytes);
            if (request && station.printer.behaviour != Behaviour::Silent) {
                answer(station, *request, datagram->sender);
            }
        }
    }

    void answer(const Station& station, const snmp::Request& request, const sockaddr_in& to) {
        const Printer& printer = station.printer;
        const bool deviceIdRequest = snmp::asksForDeviceId(request);
        const bool raw = deviceIdRequest && printer.behaviour == Behaviour::Raw;
        Reply reply{&station, to, raw ? printer.raw : snmp::buildResponse(request, printer.deviceId)};
        if (deviceIdRequest && printer.behaviour == Behaviour::Late) {
            laterReplies_.emplace(Clock::now() + printer.delay, std::move(reply));
        } else {
            send(reply);
        }
    }

    static void send(const Reply& reply) {
        const auto* to = reinterpret_cast<const sockaddr*>(&reply.to);
        const int fd = reply.from->socket.get();
        // A client that has gone is no reason to stop serving the others.
        if (::sendto(fd, reply.bytes.data(), reply.bytes.size(), 0, to, sizeof reply.to) < 0) {
            std::cerr << "virtual-printers: " << reply.from->printer.address
                      << " cannot answer: " << std::generic_category().message(errno) << "\n";
        }
    }

    /// -1, for ever, when none is due.
    [[nodiscard]] int millisecondsToNextReply() const {
        if (laterReplies_.empty()) {
            return -1;
        }
        const auto left = laterReplies_.begin()->first - Clock::now();
        return std::max(0, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count()));
    }

    void sendDueReplies() {
        const auto firstNotDue = laterReplies_.upper_bound(Clock::now());
        for (auto due = laterReplies_.begin(); due != firstNotDue; ++due) {
            send(due->second);
        }
        laterReplies_.erase(laterReplies_.begin(), firstNotDue);
    }

    Record record_;
    Descriptor groupSocket_;
    std::vector<Station> stations_;
    Descriptor epoll_;
    std::multimap<Clock::time_point, Reply> laterReplies_;
};

struct Options {
    std::string file;
    std::string record;
    std::string_view text;  // what --help or --version prints instead of serving
};

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help") {
            options.text = usage;
            return options;
        }
        if (argument == "--version") {
            options.text = "virtual-printers " QUAZEL_VERSION "\n";
            return options;
        }
        if (argument == "--record") {
            if (++i == arguments.size() || arguments[i].empty()) {
                throw UsageError("virtual-printers: --record needs a file");
            }
            options.record = arguments[i];
        } else if (argument.size() > 1 && argument.starts_with('-')) {
            throw UsageError("virtual-printers: unknown option " + argument);
        } else if (argument.empty() || !options.file.empty()) {
            throw UsageError("virtual-printers: one FILE is needed");
        } else {
            options.file = argument;
        }
    }
    if (options.file.empty()) {
        throw UsageError("virtual-printers: one FILE is needed");
    }
    return options;
}

// Returns the signal mask to wait with.
sigset_t catchStopSignals() {
    sigset_t stopSignals;
    sigset_t whileWaiting;
    sigemptyset(&stopSignals);
    struct sigaction action {};
    action.sa_handler = [](int) { stopRequested = 1; };
    for (const int signal : {SIGTERM, SIGINT}) {
        sigaddset(&stopSignals, signal);
        ::sigaction(signal, &action, nullptr);
    }
    ::sigprocmask(SIG_BLOCK, &stopSignals, &whileWaiting);
    // A parent may have left them blocked.
    sigdelset(&whileWaiting, SIGTERM);
    sigdelset(&whileWaiting, SIGINT);
    return whileWaiting;
}

void allowDescriptors() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < descriptorsNeeded) {
        limit.rlim_cur = std::min(descriptorsNeeded, limit.rlim_max);
        // Where it fails, the socket too many says so.
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

void serve(const Options& options) {
    std::vector<Printer> printers = readPrinters(options.file);
    const sigset_t whileWaiting = catchStopSignals();
    allowDescriptors();
    Subnet subnet(std::move(printers), options.record);
    std::cout << "ready\n" << std::flush;
    subnet.run(whileWaiting);
}

}  // namespace

int main(int argc, char* argv[]) {
    try {
        const Options options = parseOptions({argv + std::min(argc, 1), argv + argc});
        if (options.text.empty()) {
            serve(options);
        } else {
            std::cout << options.text << std::flush;
        }
        return 0;
    } catch (const UsageError& error) {
        std::cerr << error.what() << "\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "virtual-printers: " << error.what() << "\n";
        return 1;
    }
}

// A subnet of SNMP printers in one process, for the demo, the tests and the benchmarks.
// One socket on 0.0.0.0:161 receives all datagrams to the printers and to the all-hosts group; each reply has
// its printer's source address. Replies only to the two requests of discovery (SNMPv1, RFC 1157, in BER),
// with any request id. The requests are encoded independently of the client's code, so that the tests detect
// mistakes in it. Limits: IPv4; device ids of up to 1400 bytes; every address must be local to this machine.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QNetworkDatagram>
#include <QTimer>
#include <QUdpSocket>

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

namespace {

using namespace Qt::StringLiterals;

constexpr quint16 snmpPort = 161;
constexpr quint32 allHostsGroup = 0xE0000001;  // 224.0.0.1
constexpr qsizetype maximumDeviceId = 1400;

[[noreturn]] void fail(const QByteArray& reason) {
    std::fprintf(stderr, "virtual-printers: %s\n", reason.constData());
    std::exit(EXIT_FAILURE);
}

// SNMP

constexpr char integerTag = 0x02;
constexpr char octetStringTag = 0x04;
constexpr char nullTag = 0x05;
constexpr char objectIdTag = 0x06;
constexpr char sequenceTag = 0x30;
constexpr char getRequestTag = '\xA0';
constexpr char getNextRequestTag = '\xA1';
constexpr char getResponseTag = '\xA2';

constexpr const char* printerMib = "\x2B\x06\x01\x02\x01\x2B";  // 1.3.6.1.2.1.43
constexpr const char* firstPrinterObject =
    "\x2B\x06\x01\x02\x01\x2B\x05\x01\x01\x01\x01";  // .5.1.1.1.1 in it
constexpr const char* deviceIdObject =               // 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1
    "\x2B\x06\x01\x04\x01\x95\x0B\x01\x02\x01\x02\x01\x01\x03\x01";

QByteArray element(char tag, const QByteArray& content) {
    const qsizetype size = content.size();
    QByteArray header(1, tag);
    if (size > 0xFF) {
        header += '\x82';
        header += static_cast<char>(size >> 8);
    } else if (size > 0x7F) {
        header += '\x81';
    }
    return header + static_cast<char>(size & 0xFF) + content;
}

/// A message with one binding, error-status and error-index 0.
QByteArray message(char pduTag, const QByteArray& requestId, const QByteArray& objectId,
                   const QByteArray& value) {
    const QByteArray zero = element(integerTag, QByteArray(1, '\0'));
    const QByteArray binding = element(sequenceTag, element(objectIdTag, objectId) + value);
    const QByteArray pdu = element(integerTag, requestId) + zero + zero + element(sequenceTag, binding);
    return element(sequenceTag, zero + element(octetStringTag, "public") + element(pduTag, pdu));
}

/// The request id's content bytes, from a short message with the community "public"; empty if there is none.
QByteArray requestIdOf(const QByteArray& datagram) {
    constexpr qsizetype lengthOffset = 16;
    const char length = datagram.size() > lengthOffset ? datagram[lengthOffset] : '\0';
    return length >= 1 && length <= 4 ? datagram.mid(lengthOffset + 1, length) : QByteArray();
}

// The list

struct Printer {
    QByteArray behaviour;
    int delay = 0;        ///< Milliseconds.
    QByteArray deviceId;  ///< For "raw", the whole datagram.
};

using Printers = std::map<quint32, Printer>;  ///< By IPv4 address.

QByteArray takeWord(QByteArray& rest) {
    const qsizetype end = rest.indexOf(' ') < 0 ? rest.size() : rest.indexOf(' ');
    QByteArray word = rest.left(end);
    rest = rest.mid(end).trimmed();
    return word;
}

/// False if the line is not in the list's format.
bool addPrinter(Printers& printers, QByteArray line) {
    const QHostAddress address(QString::fromLatin1(takeWord(line)));
    Printer printer;
    printer.behaviour = takeWord(line);
    bool isValid = QByteArrayList{"answers", "twice", "silent", "late", "raw"}.contains(printer.behaviour);
    if (printer.behaviour == "late") {
        printer.delay = takeWord(line).toInt(&isValid);
    }
    printer.deviceId = printer.behaviour == "raw" ? QByteArray::fromHex(line) : line;
    return isValid && address.protocol() == QHostAddress::IPv4Protocol &&
           printer.deviceId.size() <= maximumDeviceId &&
           printers.try_emplace(address.toIPv4Address(), printer).second;
}

Printers readPrinters(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        fail("cannot read " + path.toLocal8Bit() + ": " + file.errorString().toLocal8Bit());
    }
    Printers printers;
    for (const QByteArray& text : file.readAll().split('\n')) {
        const QByteArray line = text.trimmed();
        if (!line.isEmpty() && !line.startsWith('#') && !addPrinter(printers, line)) {
            fail("not a printer, see --help: " + line);
        }
    }
    return printers;
}

// The network

class Subnet {
  public:
    explicit Subnet(Printers printers) : printers_(std::move(printers)) {
        if (!socket_.bind(QHostAddress::AnyIPv4, snmpPort, QUdpSocket::DontShareAddress)) {
            fail("cannot bind 0.0.0.0:161: " + socket_.errorString().toLocal8Bit());
        }
        QObject::connect(&socket_, &QUdpSocket::readyRead, [this] {
            while (socket_.hasPendingDatagrams()) {
                handle(socket_.receiveDatagram());
            }
        });
    }

  private:
    void handle(const QNetworkDatagram& request) {
        const quint32 to = request.destinationAddress().toIPv4Address();
        const auto found = printers_.find(to);
        if (to == allHostsGroup) {
            for (const auto& [address, printer] : printers_) {
                answer(address, printer, request);
            }
        } else if (found != printers_.end()) {
            answer(found->first, found->second, request);
        }
    }

    void answer(quint32 address, const Printer& printer, const QNetworkDatagram& request) {
        const QByteArray requestId = requestIdOf(request.data());
        const QByteArray null = element(nullTag, {});
        QNetworkDatagram reply;
        reply.setDestination(request.senderAddress(), static_cast<quint16>(request.senderPort()));
        reply.setSender(QHostAddress(address));
        if (request.data() == message(getNextRequestTag, requestId, printerMib, null)) {
            reply.setData(message(getResponseTag, requestId, firstPrinterObject,
                                  element(integerTag, QByteArray(1, 1))));
            send(reply);
            if (printer.behaviour == "twice") {
                reply.setData({});
                send(reply);
            }
        } else if (request.data() == message(getRequestTag, requestId, deviceIdObject, null) &&
                   printer.behaviour != "silent") {
            const QByteArray deviceId = element(octetStringTag, printer.deviceId);
            reply.setData(printer.behaviour == "raw"
                              ? printer.deviceId
                              : message(getResponseTag, requestId, deviceIdObject, deviceId));
            if (printer.delay == 0) {
                send(reply);
            } else {
                QTimer::singleShot(printer.delay, Qt::PreciseTimer, &socket_, [this, reply] { send(reply); });
            }
        }
    }

    /// Not by QUdpSocket, which ignores the sender address of a datagram.
    void send(const QNetworkDatagram& reply) {
        sockaddr_in to{AF_INET, htons(static_cast<quint16>(reply.destinationPort())), {}, {}};
        to.sin_addr.s_addr = htonl(reply.destinationAddress().toIPv4Address());
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
        auto* const source = reinterpret_cast<cmsghdr*>(control.data());
        *source = {CMSG_LEN(sizeof(in_pktinfo)), IPPROTO_IP, IP_PKTINFO};
        in_pktinfo info{};
        info.ipi_spec_dst.s_addr = htonl(reply.senderAddress().toIPv4Address());
        std::memcpy(CMSG_DATA(source), &info, sizeof info);
        QByteArray bytes = reply.data();
        iovec part{bytes.data(), static_cast<std::size_t>(bytes.size())};
        const msghdr header{&to, sizeof to, &part, 1, control.data(), control.size(), 0};
        // An error for one client must not affect the others.
        if (::sendmsg(static_cast<int>(socket_.socketDescriptor()), &header, 0) < 0) {
            std::fprintf(stderr, "virtual-printers: %s cannot answer: %s\n",
                         qPrintable(reply.senderAddress().toString()), std::strerror(errno));
        }
    }

    Printers printers_;
    QUdpSocket socket_;
};

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        uR"(Simulates a subnet of SNMP printers. The file LIST has one printer per line:
  ADDRESS answers DEVICE-ID
  ADDRESS twice DEVICE-ID              replies to the probe twice, the second time empty
  ADDRESS silent                       replies to the probe only
  ADDRESS late MILLISECONDS DEVICE-ID  delays the device id
  ADDRESS raw HEXBYTES                 replies to the device id request with these bytes
Blank lines and lines that start with # are ignored. Prints "ready" when the printers
listen, and runs until a signal ends it.)"_s);
    parser.addPositionalArgument(u"LIST"_s, u"The printers."_s);
    parser.addHelpOption();
    parser.process(application);
    if (parser.positionalArguments().size() != 1) {
        fail("expected one LIST; see --help");
    }
    const Subnet subnet(readPrinters(parser.positionalArguments().constFirst()));
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

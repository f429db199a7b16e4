// Agents that nobody here wrote, on hosts of their own: net-snmp's snmpd in one network namespace each, on
// the bridge lan0, found by the program that searches from a terminal.

#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

using namespace Qt::StringLiterals;

/// Sorted, as the hosts answer in any order.
QByteArray sortedLines(const QByteArray& text) {
    QByteArrayList lines = text.split('\n');
    lines.removeAll(QByteArray());
    std::sort(lines.begin(), lines.end());
    return lines.join('|');
}

/// Output, errors and status of a program; by default of the search.
QByteArrayList discover(const QStringList& arguments = {},
                        const QString& program = programPath(u"kv-discover"_s)) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return {sortedLines(process.readAllStandardOutput()), sortedLines(process.readAllStandardError()),
            QByteArray::number(process.exitCode())};
}

}  // namespace

class TestSnmpd : public QObject {
    Q_OBJECT

  private slots:
    void findsTheSeries() {
        qputenv("PATH", "/usr/sbin:" + qgetenv("PATH"));
        // Here the printers are other hosts: their addresses are not this one's.
        QCOMPARE(std::system("ip route del local 10.0.0.0/24 dev lo"), 0);
        addHost(2, deviceId(u"LP\x1b[1m"_s));
        QCOMPARE(discover(), (QByteArrayList{"", "PrinterInfo.szModel LP\x1b[1m", "1"}));
        addHost(3, deviceId(u"TVK KV260N"_s));
        addHost(4, deviceId(u"KV460"_s));
        QCOMPARE(discover(), (QByteArrayList{"Tovik KV260 @10.0.0.3|Tovik KV460 @10.0.0.4",
                                             "PrinterInfo.szModel KV460|PrinterInfo.szModel LP\x1b[1m|"
                                             "PrinterInfo.szModel TVK KV260N",
                                             "0"}));
    }

    /// Nothing that the network says controls the terminal.
    void escapesOnATerminal() {
        const QString command = programPath(u"kv-discover"_s) + u" >/dev/null"_s;
        QCOMPARE(discover({u"-qec"_s, command, u"/dev/null"_s}, u"script"_s).first(),
                 "PrinterInfo.szModel KV460\r|PrinterInfo.szModel LP\\x1b[1m\r|"
                 "PrinterInfo.szModel TVK KV260N\r");
        QCOMPARE(discover({u"10.0.0.3"_s}).last(), "2");
    }

    void cleanupTestCase() {
        for (const auto& agent : agents_) {
            agent->terminate();
            agent->waitForFinished();
        }
    }

  private:
    void addHost(int number, const QString& id) {
        const QString commands =
            u"set -e; ip netns add host%1;"
            "ip link add port%1 type veth peer name eth0 netns host%1;"
            "ip link set port%1 master lan0 up; ip -n host%1 link set eth0 up;"
            "ip -n host%1 address add 10.0.0.%1/24 dev eth0"_s;
        QCOMPARE(std::system(qPrintable(commands.arg(number))), 0);
        const QString config = home_.path() + u"/snmpd%1.conf"_s.arg(number);
        writeFile(config, "rocommunity public\noverride .1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1 octet_str \"" +
                              id.toUtf8() + "\"\n");
        agents_.push_back(std::make_unique<QProcess>());
        agents_.back()->setStandardErrorFile(QProcess::nullDevice());
        agents_.back()->startCommand(
            u"ip netns exec host%1 snmpd -f -Lo -C -c %2 udp:161"_s.arg(number).arg(config));
        // Whether it has its socket; asking it would teach the bridge what discovery has to find out.
        const QString look = u"ip netns exec host%1 grep -q :00A1 /proc/net/udp"_s.arg(number);
        QTRY_COMPARE(std::system(qPrintable(look)), 0);
    }

    TemporaryHome home_;
    std::vector<std::unique_ptr<QProcess>> agents_;
};

QUAZEL_TEST_MAIN(TestSnmpd, QCoreApplication)

#include "test_Snmpd.moc"

// The decision whether the user may leave the page, against a print service with two queues of the series,
// and in states that no user's act leads to. The others are in test_InputPaths.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/InstalledPrinters.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/PrivateCupsd.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString manualEntry = u"Enter IP Address Manually"_s;
const QString chooseOne = u"Please choose Printer IP or Enter the IP Address to configure"_s;
const QString installed =
    u"A Printer with this IP Address is already Installed, Please choose another Ethernet Printer"_s;
const QString mismatch = u"Selected Printer model is "_s;
const QString invalid = u"Invalid IP"_s;

QString alertOf(const QString& text) {
    return u"Tovik KV Card Printer IP Configuration|%1|Ok"_s.arg(text);
}

/// The log on one line, its recurring parts cut short. What the CUPS check logs is another test's.
QString shorten(const QStringList& log) {
    static const QRegularExpression cups(u"GetInstalledPrinterList.*Return from CUPS Printer List"_s);
    static const QRegularExpression write(
        uR"(Writing to Text File\|writeToTextFile (.*)\|writeToTextFile END)"_s);
    return log.join(u'|')
        .replace(cups, u"CUPS"_s)
        .replace(write, uR"(write \1)"_s)
        .replace(u"Line No "_s, u"L"_s)
        .replace(u"IsIPAvalaibleInList"_s, u"IP?"_s)
        .replace(u"shouldExitPane  :: Return"_s, u"leave"_s);
}

}  // namespace

class TestShouldExitPane : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        systemLog_ = std::make_unique<SystemLogCapture>();
        setFoundPrinters(
            {u"Tovik KV260 @10.0.0.5"_s, u"Tovik KV460 @10.0.0.9"_s, u"Tovik KV210 @10.0.0.4"_s});
    }
    void init() {
        pane_ = std::make_unique<NetworkPrinterConfigPane>();
        pane_->awakeFromNib();
        pane_->radiobtnPrinterType()->selectCellAtRow(1, 0);
        writeFile(home_.selectionFile(), "as it was");
        (void)takeLog(home_);
        (void)systemLog_->take();
    }

    void decides_data() {
        QTest::addColumn<QString>("item");     // null: none selected
        QTest::addColumn<QString>("address");  // in the text field
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("outcome");  // the line handed on, or the alert
        QTest::addColumn<QString>("log");      // behind the seven records of the values
        const auto add = [](const char* name, const QString& item, const char* address, int column,
                            const QString& outcome, const QString& log) {
            QTest::newRow(name) << item << QString::fromLatin1(address) << column << outcome
                                << QString(log).replace(u"%1"_s, outcome);
        };
        const QString checked = u"|L1037|L1047|L1058|Validating|"_s;
        const QString list = u"L1014|IP?"_s + checked + u"L1066|###IP2Configure %1|####L1083|CUPS|###L1086"_s;
        const QString fromList = list + u"|@@@@L1097|write %1|@@@@L1100|leave"_s;
        const QString typed = checked + u"!!!L1121|CUPS|!!!!L1124"_s;
        const QString fromField = typed + u"|---L1135|write %1|--L1138|leave"_s;
        const QString unknown = u"L1014|IP?"_s;  // The address is in no line.
        const QString kv260 = u"Tovik KV260 @10.0.0.5"_s;

        add("not an address, with a printer", kv260, "10.0.0.256", 1, invalid, u"L1014|L1026"_s);
        add("a printer and an empty field", kv260, "", 2, u"KV410 10.0.0.5"_s, fromList);
        add("the first model overrides the column", u"Tovik KV210 @10.0.0.44"_s, "10.0.0.44", 2,
            u"KV210 10.0.0.44"_s, QString(fromList).replace(u"L1047|"_s, u"L1047|L1051|"_s));
        add("an installed printer", u"Tovik KV460 @10.0.0.9"_s, "10.0.0.9", 3, installed,
            list.arg(u"KV460 10.0.0.9"_s));
        add("typed, none selected", QString(), "10.0.0.77", 1, u"KV260 10.0.0.77"_s, u"L1014"_s + fromField);
        add("typed, installed", manualEntry, "10.0.0.8", 2, installed, unknown + typed);
        add("typed, installed as another model", manualEntry, "10.0.0.8", 0, u"KV210 10.0.0.8"_s,
            unknown + fromField);
    }
    void decides() {
        QFETCH(QString, item);
        QFETCH(QString, address);
        QFETCH(int, column);
        QFETCH(QString, outcome);
        NetworkPrinterConfigPane& pane = *pane_;
        const bool isAccepted = outcome.startsWith(u"KV"_s);
        AlertReader alerts;
        BeepCounter beeps;
        give(item, address, column);
        pane.setG_ChangeTextBoxText(true);
        (void)takeLog(home_);

        QCOMPARE(pane.shouldExitPane(InstallerDirectionForward), isAccepted);

        const QString values =
            u"shouldExitPane|shouldExitPane  :: InstallerDirectionForward|Row Value is Here|"
            "L981| Value is Here %1|L989| Value IP is Here %2|"_s;
        QFETCH(QString, log);
        QCOMPARE(shorten(takeLog(home_)), values.arg(item.isNull() ? u"(null)"_s : item, address) + log);
        QCOMPARE(alerts.take().join(u'|'), isAccepted ? QString() : alertOf(outcome));
        QCOMPARE(beeps.take(), outcome == invalid ? 1 : 0);
        QCOMPARE(pane.IPAddressText()->stringValue(), outcome == invalid ? u""_s : address);
        QCOMPARE(pane.g_deSelectCell(), outcome.startsWith(mismatch));
        QCOMPARE(pane.g_ChangeTextBoxText(), !outcome.startsWith(mismatch));
        QCOMPARE(contentOf(home_.selectionFile()), isAccepted ? outcome.toLatin1() : "as it was");
        if (isAccepted) {
            QCOMPARE(g_ModelName, u"Tovik-"_s + QString(outcome).replace(u" "_s, u"-Ethernet-Printer-IP="_s));
        }
    }

    void logsTheModelCheck() {
        const AlertReader alerts;
        setFoundPrinters({u"Tovik KV260 @10.0.0.5"_s});
        give(manualEntry, u"10.0.0.5"_s, 3);
        (void)systemLog_->take();
        QVERIFY(!pane_->ValidateSelectedIPAndModel());
        const QString lookUp =
            u"~~IsIPAvalaibleInList 10.0.0.5|Found an Item: Enter IP Address Manually||"
            "Found an Item: Tovik KV260 @10.0.0.5||IsIPAvalaibleInList IP Is Enter IP Address Manually|"
            "IsIPAvalaibleInList IP Is Tovik KV260 @10.0.0.5|IsIPAvalaibleInList Return1|"_s;
        const QString check =
            u"Getting IP Model for the IP 10.0.0.5|%1ValidateSelectedIPAndModel is Tovik|"
            "%1PrinterModelToColumnNo is Tovik|PrinterModelToColumnNo Return 0|Model  Value is 0|"
            "ValidateSelectedIPAndModel Return 0 "_s;
        QCOMPARE(systemLog_->take().join(u'|'), check.arg(lookUp));
        pane_->PrinterIP()->removeAllItems();
        QVERIFY(pane_->ValidateSelectedIPAndModel());
        QCOMPARE(systemLog_->take().join(u'|'),
                 u"ValidateSelectedIPAndModel is (null)|Empty String Return"_s);
    }

    void aMissingFieldHoldsNoAddress() {
        AlertReader alerts;
        const BeepCounter beeps;
        give(u"Tovik KV260 @10.0.0.5"_s, u"10.0.0.5"_s, 1);
        delete pane_->IPAddressText();
        QVERIFY(!pane_->shouldExitPane(InstallerDirectionForward));
        pane_->PrinterIP()->removeAllItems();
        QVERIFY(!pane_->shouldExitPane(InstallerDirectionForward));
        QCOMPARE(alerts.take(), QStringList({alertOf(invalid), alertOf(chooseOne)}));
    }

  private:
    void give(const QString& item, const QString& address, int column) {
        if (!item.isNull()) {
            pane_->PrinterIP()->addItemWithObjectValue(item);
            pane_->PrinterIP()->selectItemAtIndex(0);
        }
        pane_->IPAddressText()->setStringValue(address);
        pane_->radiobtnPrinterModel()->selectCellAtRow(0, column);
    }

    TemporaryHome home_;
    PrivateCupsd prints_{{{u"Tovik-KV460-Ethernet-Printer-IP=10.0.0.9"_s, PrivateCupsd::ppd({"KV460.PPD"})},
                          {u"Tovik-KV410-Ethernet-Printer-IP=10.0.0.8"_s, PrivateCupsd::ppd({"KV410.PPD"})}}};
    std::unique_ptr<SystemLogCapture> systemLog_;
    std::unique_ptr<NetworkPrinterConfigPane> pane_;
};

QUAZEL_TEST_MAIN(TestShouldExitPane, QApplication)

#include "test_ShouldExitPane.moc"

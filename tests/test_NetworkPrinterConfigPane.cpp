// The page by itself: what it logs and does when it is made, entered and clicked, and its questions to the
// found list. The decision to leave is in test_ShouldExitPane, a whole discovery in test_PageDiscovery.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/PageStrings.h"
#include "discovery/PrinterDiscovery.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDir>
#include <QMetaProperty>
#include <QRadioButton>
#include <QTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString manualEntry = u"Enter IP Address Manually"_s;

/// A root folder with all of the real one and an empty /Library, which only this process sees.
bool enterRootWithLibrary() {
    if (::mount("tmpfs", "/mnt", "tmpfs", 0, nullptr) != 0) {
        return false;
    }
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo& entry : QDir(u"/"_s).entryInfoList(all)) {
        const QString copy = u"/mnt/"_s + entry.fileName();
        if (entry.isSymLink()) {
            QFile::link(entry.symLinkTarget(), copy);
        } else if (entry.isDir()) {
            QDir().mkdir(copy);
            ::mount(qPrintable(entry.filePath()), qPrintable(copy), nullptr, MS_BIND | MS_REC, nullptr);
        }
    }
    return ::chroot("/mnt") == 0 && ::chdir("/") == 0 && QDir().mkpath(u"/Library/Printers"_s);
}

}  // namespace

class TestNetworkPrinterConfigPane : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { systemLog_ = std::make_unique<SystemLogCapture>(); }
    void init() {
        pane_ = std::make_unique<NetworkPrinterConfigPane>();
        pane_->awakeFromNib();
        (void)takeLog(home_);
        (void)systemLog_->take();
    }

    void awakens() {
        NetworkPrinterConfigPane pane;
        writeFile(home_.selectionFile(), "KV210 1.2.3.4");
        pane.awakeFromNib();
        QCOMPARE(takeLog(home_).join(u'|'),
                 u"Tovik Quazel Installer Initializing....|"
                 "Inside RemoveFile|Return from RemoveFile"_s);
        QVERIFY(!QFile::exists(home_.selectionFile()));
        QCOMPARE(systemLog_->take(), QStringList{u"(null)"_s});
    }

    void showsTheIdOfAMissingTitle() {
        QCOMPARE(pane_->title(), u"PaneTitle"_s);
        loadPageStrings();
        QCOMPARE(pane_->title(), u"Printer Connection"_s);
    }

    void enters_data() {
        QTest::addColumn<int>("direction");
        QTest::newRow("forward") << 0;
        QTest::newRow("back") << 1;
        QTest::newRow("any other value is back") << -1;
    }
    void enters() {
        QFETCH(int, direction);
        const bool isForward = direction == 0;
        NetworkPrinterConfigPane& pane = *pane_;
        for (int visit = 0; visit < 2; ++visit) {
            writeFile(home_.selectionFile(), "KV210 1.2.3.4");
            pane.radiobtnPrinterType()->selectCellAtRow(1, 0);
            pane.radiobtnPrinterModel()->selectCellAtRow(0, 3);
            pane.PrinterIPInfoBox()->show();
            pane.Progress()->show();
            pane.PrinterIP()->addItemWithObjectValue(manualEntry);
            pane.IPAddressText()->setStringValue(u"10.0.0.7"_s);
            for (QWidget* const control : {static_cast<QWidget*>(pane.IPAddressText()),
                                           static_cast<QWidget*>(pane.radiobtnPrinterModel())}) {
                control->setEnabled(true);
            }
            pane.IPAddressText()->setEditable(true);

            pane.didEnterPane(static_cast<InstallerDirection>(direction));

            const QString removal = u"Inside RemoveFile|Return from RemoveFile|"_s;
            QCOMPARE(takeLog(home_).join(u'|'),
                     u"didEnterPane|"_s + (isForward ? removal : QString()) + u"Return from didEnterPane"_s);
            QCOMPARE(QFile::exists(home_.selectionFile()), !isForward);
            QCOMPARE(pane.radiobtnPrinterType()->selectedRow(), isForward ? 0 : 1);
            QCOMPARE(pane.radiobtnPrinterModel()->selectedColumn(), isForward ? 0 : 3);
            QCOMPARE(pane.PrinterIPInfoBox()->isHidden(), isForward);
            QCOMPARE(pane.Progress()->isHidden(), isForward);
            QCOMPARE(pane.IPAddressText()->isEditable(), !isForward);
            QCOMPARE(pane.IPAddressText()->isEnabled(), !isForward);
            QCOMPARE(pane.radiobtnPrinterModel()->isEnabled(), !isForward);
            QCOMPARE(pane.IPAddressText()->stringValue(), u"10.0.0.7"_s);
            QCOMPARE(pane.PrinterIP()->count(), visit + 1);
        }
    }

    void followsTheChosenItem_data() {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("state");  // text, editable, enabled, model enabled, column, cell, follows
        QTest::addColumn<QString>("log");    // behind the first record
        const auto add = [](const char* name, const QString& item, const char* state, const char* log) {
            QTest::newRow(name) << item << QString::fromLatin1(state) << QString::fromLatin1(log);
        };
        add("none", QString(), "9.9.9.9 1 1 1 1 1 0", "didSelectIP modal is (null)");
        add("empty", u""_s, "9.9.9.9 0 0 1 1 1 0", "didSelectIP modal is |IP String is equal to NULL");
        add("manual entry", manualEntry, " 1 1 1 0 1 0", "didSelectIP modal is Enter IP Address Manually");
        add("a printer", u"Tovik KV410 @10.0.0.7"_s, "10.0.0.7 0 0 0 2 2 1",
            "didSelectIP modal is Tovik KV410 @10.0.0.7|ChangePrinterModelRadioButton Tovik KV410 @10.0.0.7|"
            "$$$$$10.0.0.7");
        add("other letters are a printer, of no model", u"enter @1"_s, "1 0 0 0 1 1 1",
            "didSelectIP modal is enter @1|ChangePrinterModelRadioButton enter @1|$$$$$1");
    }
    void followsTheChosenItem() {
        QFETCH(QString, item);
        NetworkPrinterConfigPane& pane = *pane_;
        pane.IPAddressText()->setStringValue(u"9.9.9.9"_s);
        pane.radiobtnPrinterModel()->selectCellAtRow(0, 1);
        pane.setG_SelectedCell(1);
        if (item.isNull()) {
            pane.didSelectIP();
        } else {
            pane.PrinterIP()->addItemWithObjectValue(item);
            pane.PrinterIP()->selectItemAtIndex(0);
        }
        const TextField& field = *pane.IPAddressText();
        const RadioMatrix& models = *pane.radiobtnPrinterModel();
        QStringList state{field.stringValue()};
        for (const qint64 value :
             {qint64{field.isEditable()}, qint64{field.isEnabled()}, qint64{models.isEnabled()},
              qint64{models.selectedColumn()}, pane.g_SelectedCell(), qint64{pane.g_ChangeTextBoxText()}}) {
            state += QString::number(value);
        }
        QTEST(state.join(u' '), "state");
        QFETCH(QString, log);
        QCOMPARE(takeLog(home_).join(u'|'), u"didSelectIP Event Called|"_s + log);
    }

    void looksUpModels_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("first");  // -1: left alone
        QTest::addColumn<int>("last");
        QTest::newRow("two models") << u"KV210 KV460"_s << 0 << 3;
        QTest::newRow("the other way round") << u"KV460KV260"_s << 1 << 3;
        QTest::newRow("one") << u"KV410N"_s << 2 << 2;
        QTest::newRow("the maker") << u"Tovik kv410"_s << -1 << 0;
        QTest::newRow("null") << QString() << -1 << 0;
    }
    void looksUpModels() {
        QFETCH(QString, text);
        pane_->radiobtnPrinterModel()->selectCellAtRow(0, 3);
        pane_->setG_SelectedCell(-1);
        pane_->IPAddressText()->setStringValue(u"10.0.0.7"_s);
        pane_->ChangePrinterModelRadioButton(text);
        QTEST(static_cast<int>(pane_->g_SelectedCell()), "first");
        QCOMPARE(pane_->radiobtnPrinterModel()->selectedColumn(),
                 pane_->g_SelectedCell() < 0 ? 3 : static_cast<int>(pane_->g_SelectedCell()));
        QCOMPARE(pane_->IPAddressText()->stringValue(), u"10.0.0.7"_s);  // No item was chosen.
        QTEST(pane_->PrinterModelToColumnNo(text), "last");
    }

    void looksUpAddresses_data() {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("word");  // null: not found
        QTest::newRow("a printer's") << u"10.0.0.7"_s << u"Tovik"_s;
        QTest::newRow("longer than any") << u"10.0.0.70"_s << QString();
        QTest::newRow("the end of one") << u"0.0.0.5"_s << u"Tovik"_s;
        QTest::newRow("empty") << u""_s << QString();
        QTest::newRow("in the manual entry") << u"IP"_s << u"Enter"_s;
    }
    void looksUpAddresses() {
        QFETCH(QString, address);
        QFETCH(QString, word);
        g_PrinterList.reset();
        QVERIFY(!pane_->IsIPAvalaibleInList(address));
        setFoundPrinters({u"Tovik KV260 @10.0.0.5"_s, u"Tovik KV410 @10.0.0.7"_s});
        QCOMPARE(pane_->IsIPAvalaibleInList(address), !word.isNull());
        QCOMPARE(pane_->g_selectedPrinterModel(), word);
        QCoreApplication::processEvents();
        QVERIFY(pane_->g_selectedPrinterModel().isNull());  // Nobody keeps the text any longer.
    }

    void logsALookUp() {
        setFoundPrinters({u"Tovik KV260 @10.0.0.5"_s});
        (void)pane_->IsIPAvalaibleInList(u"10.0.0.5"_s);
        (void)pane_->PrinterModelToColumnNo(u"KV260"_s);
        QCOMPARE(systemLog_->take().join(u'|'),
                 u"~~IsIPAvalaibleInList 10.0.0.5|Found an Item: Enter IP Address Manually||"
                 "Found an Item: Tovik KV260 @10.0.0.5||"
                 "IsIPAvalaibleInList IP Is Enter IP Address Manually|"
                 "IsIPAvalaibleInList IP Is Tovik KV260 @10.0.0.5|IsIPAvalaibleInList Return1|"
                 "PrinterModelToColumnNo is KV260|PrinterModelToColumnNo Return 1"_s);
    }

    void editingUnlocksTheModels() {
        NetworkPrinterConfigPane& pane = *pane_;
        pane.contentWidget()->show();
        pane.radiobtnPrinterModel()->setEnabled(false);
        QTest::keyClicks(pane.IPAddressText(), u"1"_s);
        QVERIFY(pane.radiobtnPrinterModel()->isEnabled());
        QTest::keyClick(pane.radiobtnPrinterModel()->cellAt(0, 2), Qt::Key_Space);
        QCOMPARE(systemLog_->take(), QStringList{u"Selected Model Item is 2"_s});
    }

    void aMissingControlTakesMessagesInSilence() {
        const QMetaObject& description = NetworkPrinterConfigPane::staticMetaObject;
        for (int index = description.propertyOffset(); index <= description.propertyCount(); ++index) {
            init();
            if (index == description.propertyCount()) {
                delete pane_->contentWidget();  // All of them at once.
            } else {
                const char* const name = description.property(index).name();
                auto* const control = pane_->property(name).value<QObject*>();
                QVERIFY2(control != nullptr, name);
                delete control;
                QVERIFY2(pane_->property(name).value<QObject*>() == nullptr, name);
            }
            pane_->didEnterPane(InstallerDirectionForward);
            pane_->PrinterTypeClicked();
            pane_->didSelectIP();
            pane_->setG_ChangeTextBoxText(true);
            pane_->ChangePrinterModelRadioButton(u"Tovik KV410 @10.0.0.7"_s);
            pane_->IPTextBoxGotFocus();
            pane_->PrinterModelClicked();
            QCOMPARE(pane_->g_SelectedCell(), 2);
            QVERIFY(pane_->shouldExitPane(InstallerDirectionForward));
        }
    }

    /// Comes last, as it leaves the process in another root folder.
    void warnsOfAnotherVersion() {
        QVERIFY(enterRootWithLibrary());
        const QString driver = u"/Library/Printers/Tovik_Quazel_Printer_Driver"_s;
        const QString version = driver + u"/Version"_s;
        AlertReader alerts;
        const auto isWarned = [&] {
            pane_->CheckExistingVersion();
            return alerts.take() == QStringList{
                                        u"Previous version found!|Previous version of Tovik KV Printer "
                                        "Mac Driver has been found in "
                                        "this machine.\nThis installation will uninstall the previous "
                                        "version and install the new "
                                        "version.|Ok"_s};
        };
        QVERIFY(!isWarned());
        QVERIFY(QDir().mkpath(driver));
        QVERIFY(isWarned());
        for (const char* const text : {"1.0.10", "1.0.10.1", "", "1.0.10.0\xff"}) {
            writeFile(version, text);
            QVERIFY2(isWarned(), text);
        }
        writeFile(version, " 1.0.10.0\n");
        QVERIFY(!isWarned());
    }

  private:
    TemporaryHome home_;
    std::unique_ptr<SystemLogCapture> systemLog_;
    std::unique_ptr<NetworkPrinterConfigPane> pane_;
};

QUAZEL_TEST_MAIN(TestNetworkPrinterConfigPane, QApplication)

#include "test_NetworkPrinterConfigPane.moc"

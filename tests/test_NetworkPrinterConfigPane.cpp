// The page by itself: what a user's acts don't reach (see test_InputPaths), and its look-ups in the found
// list.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/Translations.h"
#include "discovery/PrinterDiscovery.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QMetaProperty>
#include <QTest>
#include <QTranslator>

#include <sys/mount.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A root folder with all of the real one's folders and an empty /Library, which only this process sees.
bool enterRootWithLibrary() {
    bool isReady = ::mount("tmpfs", "/mnt", "tmpfs", 0, nullptr) == 0;
    for (const QString& name : QDir(u"/"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray folder = '/' + QFile::encodeName(name);
        const QByteArray copy = "/mnt" + folder;
        isReady = isReady && QDir().mkdir(QFile::decodeName(copy)) &&
                  ::mount(folder.data(), copy.data(), nullptr, MS_BIND | MS_REC, nullptr) == 0;
    }
    return isReady && ::chroot("/mnt") == 0 && ::chdir("/") == 0 && QDir().mkpath(u"/Library/Printers"_s);
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
                 u"Tovik Quazel Installer Initializing....|Inside RemoveFile|Return from RemoveFile"_s);
        QVERIFY(!QFile::exists(home_.selectionFile()));
        QCOMPARE(systemLog_->take(), QStringList{u"(null)"_s});
        QCOMPARE(pane.title(), u"Printer Connection"_s);
    }

    void titleIsThePlugInsOwn() {
        struct OtherPlugIn : QTranslator {
            QString translate(const char* /*context*/, const char* id, const char* /*comment*/,
                              int /*count*/) const override {
                return qstrcmp(id, "PaneTitle") == 0 ? u"Other"_s : QString();
            }
            bool isEmpty() const override { return false; }
        } other;
        QVERIFY(QCoreApplication::installTranslator(&other));
        QCOMPARE(pane_->title(), u"Printer Connection"_s);
        QCOMPARE(translatedText("Missing"), u"Missing"_s);
    }

    void comesBackUnchanged() {
        for (const int direction : {1, -1}) {  // Any value but 0 is back.
            writeFile(home_.selectionFile(), "KV210 1.2.3.4");
            pane_->radiobtnPrinterType()->selectCellAtRow(1, 0);
            pane_->didEnterPane(static_cast<InstallerDirection>(direction));
            QCOMPARE(takeLog(home_).join(u'|'), u"didEnterPane|Return from didEnterPane"_s);
            QCOMPARE(contentOf(home_.selectionFile()), "KV210 1.2.3.4");
            QCOMPARE(pane_->radiobtnPrinterType()->selectedRow(), 1);
        }
    }

    void followsOddItems() {
        const std::pair<QString, QString> rows[] = {
            {u""_s, u"9.9.9.9 0 0 1 1 1 0||IP String is equal to NULL"_s},
            {u"enter @1"_s,  // Other letters are a printer, of no model.
             u"1 0 0 0 1 1 1|enter @1|ChangePrinterModelRadioButton enter @1|$$$$$1"_s}};
        const QString begin = u"didSelectIP Event Called|didSelectIP modal is "_s;
        pane_->didSelectIP();  // With nothing selected.
        QCOMPARE(state(), u" 1 1 1 -1 0 0"_s);
        QCOMPARE(takeLog(home_).join(u'|'), begin + u"(null)"_s);
        for (const auto& [item, outcome] : rows) {
            init();
            pane_->IPAddressText()->setStringValue(u"9.9.9.9"_s);
            pane_->radiobtnPrinterModel()->selectCellAtRow(0, 1);
            pane_->setG_SelectedCell(1);
            pane_->PrinterIP()->addItemWithObjectValue(item);
            pane_->PrinterIP()->selectItemAtIndex(0);
            QString log = takeLog(home_).join(u'|');
            QVERIFY(log.startsWith(begin));
            QCOMPARE(state() + u'|' + log.remove(0, begin.size()), outcome);
        }
    }

    void goesInTheMiddleOfAnEdit() {
        pane_->contentWidget()->show();
        QVERIFY(QTest::qWaitForWindowActive(pane_->contentWidget()));
        pane_->IPAddressText()->setFocus();
        QTest::keyClick(pane_->IPAddressText(), '1');
        pane_.reset();  // The sanitizer tells when the end of editing reaches what is left of the page.
    }

    void looksUpModels() {
        QStringList found;  // text: chosen cell and column, by the first match; column by the last match
        pane_->IPAddressText()->setStringValue(u"10.0.0.7"_s);
        for (const QString& text :
             {u"KV210 KV460"_s, u"KV460KV260"_s, u"KV410N"_s, u"Tovik kv410"_s, QString()}) {
            pane_->radiobtnPrinterModel()->selectCellAtRow(0, 3);
            pane_->setG_SelectedCell(-1);
            pane_->ChangePrinterModelRadioButton(text);
            const int column = pane_->radiobtnPrinterModel()->selectedColumn();
            found += QString::asprintf("%s: %lld %d, %d", qPrintable(text), pane_->g_SelectedCell(), column,
                                       pane_->PrinterModelToColumnNo(text));
        }
        QCOMPARE(found.join(u'|'),
                 u"KV210 KV460: 0 0, 3|KV460KV260: 1 1, 3|KV410N: 2 2, 2|Tovik kv410: -1 3, 0|: -1 3, 0"_s);
        QCOMPARE(pane_->IPAddressText()->stringValue(), u"10.0.0.7"_s);  // No item was chosen.
    }

    void looksUpAddresses() {
        g_PrinterList.reset();
        QVERIFY(!pane_->IsIPAvalaibleInList(u"10.0.0.7"_s));
        setFoundPrinters({u"Tovik KV260 @10.0.0.5"_s, u"Tovik KV410 @10.0.0.7"_s});
        QStringList found;  // address: is it there, the first word of its line
        for (const QString& address : {u"10.0.0.7"_s, u"10.0.0.70"_s, u"0.0.0.5"_s, u""_s, u"IP"_s}) {
            const bool isThere = pane_->IsIPAvalaibleInList(address);
            found += u"%1: %2 %3"_s.arg(address).arg(isThere).arg(pane_->g_selectedPrinterModel());
            QVERIFY(pane_->shouldExitPane(InstallerDirectionBackward));
            QVERIFY(pane_->g_selectedPrinterModel().isNull());  // It lasts until a decision's end.
        }
        QCOMPARE(found.join(u'|'), u"10.0.0.7: 1 Tovik|10.0.0.70: 0 |0.0.0.5: 1 Tovik|: 0 |IP: 1 Enter"_s);
    }

    void logsTheChosenModel() {
        pane_->contentWidget()->show();
        QTest::keyClick(pane_->radiobtnPrinterModel()->cellAt(0, 2), Qt::Key_Space);
        QCOMPARE(systemLog_->take(), QStringList{u"Selected Model Item is 2"_s});
    }

    void aMissingControlTakesMessagesInSilence() {
        const QMetaObject& description = NetworkPrinterConfigPane::staticMetaObject;
        for (int index = description.propertyOffset(); index <= description.propertyCount(); ++index) {
            init();
            const char* const name = description.property(index).name();  // Behind the last one: all at once.
            const auto control = [&] { return pane_->property(name).value<QObject*>(); };
            QVERIFY2(name == nullptr || control() != nullptr, name);
            delete (name == nullptr ? pane_->contentWidget() : control());
            QVERIFY2(name == nullptr || control() == nullptr, name);
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
        const QString warning =
            u"Previous version found!|Previous version of Tovik KV Printer Mac Driver has been found in this "
            "machine.\nThis installation will uninstall the previous version and install the new version.|Ok"_s;
        AlertReader alerts;
        const auto alert = [&] {
            pane_->CheckExistingVersion();
            return alerts.take().join(u'|');
        };
        QCOMPARE(alert(), QString());
        QVERIFY(QDir().mkpath(driver));
        QCOMPARE(alert(), warning);
        for (const char* const version : {"1.0.10", "1.0.10.1", "", "1.0.10.0\xff", " 1.0.10.0\n"}) {
            writeFile(driver + u"/Version"_s, version);
            QCOMPARE(alert(), qstrcmp(version, " 1.0.10.0\n") == 0 ? QString() : warning);
        }
    }

  private:
    /// Text field: text, editable, enabled; models: enabled, column; column last chosen, whether text
    /// follows.
    [[nodiscard]] QString state() const {
        const TextField& field = *pane_->IPAddressText();
        const RadioMatrix& models = *pane_->radiobtnPrinterModel();
        return QString::asprintf("%s %d %d %d %d %lld %d", qPrintable(field.stringValue()),
                                 field.isEditable(), field.isEnabled(), models.isEnabled(),
                                 models.selectedColumn(), pane_->g_SelectedCell(),
                                 pane_->g_ChangeTextBoxText());
    }

    TemporaryHome home_;
    std::unique_ptr<SystemLogCapture> systemLog_;
    std::unique_ptr<NetworkPrinterConfigPane> pane_;
};

QUAZEL_TEST_MAIN(TestNetworkPrinterConfigPane, QApplication)

#include "test_NetworkPrinterConfigPane.moc"

// A whole discovery as the person meets it: the network row is clicked, printers are found, one is picked.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class TestPageDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void findsPrintersAndLetsOneBePicked() {
        const VirtualPrinters printers({u"10.0.0.5 answers "_s + deviceId(u"TVK KV260"_s),
                                        u"10.0.0.6 answers "_s + deviceId(u"another maker's"_s),
                                        u"10.0.0.7 twice "_s + deviceId(u"KV410N"_s)});
        SystemLogCapture systemLog;
        pane_.awakeFromNib();
        pane_.didEnterPane(InstallerDirectionForward);
        pane_.contentWidget()->show();
        QVERIFY(QTest::qWaitForWindowActive(pane_.contentWidget()));
        pane_.IPAddressText()->setStringValue(u"9.9.9.9"_s);
        (void)takeLog(home_);
        (void)systemLog.take();

        clickType(1);
        QCOMPARE(state(), u" box"_s);
        QTRY_COMPARE(state(), u" box field editable busy"_s);  // By the search's own first selection.
        QTRY_COMPARE(state(), chooseManually);
        QCOMPARE(itemsOf(*pane_.PrinterIP()).join(u'|'),
                 u"Enter IP Address Manually|Tovik KV260 @10.0.0.5|Tovik KV410 @10.0.0.7"_s);
        static const QRegularExpression inner(u"\\|GetTovikQuazelPrinters\\|.*\\|Returning to UI\\*\\*"_s);
        QCOMPARE(
            takeLog(home_).join(u'|').remove(inner),
            u"PrinterTypeClicked 1|GetPrinterIPThread|GetPrinterIP|didSelectIP Event Called|"
            "didSelectIP modal is Enter IP Address Manually|Before GetTovikQuazelPrinters|"
            "After GetTovikQuazelPrinters|Total Printer Count is 3|Found an Item: Enter IP Address Manually||"
            "Found an Item: Tovik KV260 @10.0.0.5||Found an Item: Tovik KV410 @10.0.0.7||"
            "didSelectIP Event Called|didSelectIP modal is Enter IP Address Manually"_s);
        QCOMPARE(systemLog.take(), QStringList({u"PrinterTypeClicked 1"_s, u"Array Count is 4"_s}));

        QTest::keyClick(pane_.PrinterIP(), Qt::Key_Down);
        QTest::keyClick(pane_.PrinterIP(), Qt::Key_Down);
        QCOMPARE(state(), u"10.0.0.7 box refresh list type next previous"_s);
        QCOMPARE(pane_.radiobtnPrinterModel()->selectedColumn(), 2);

        QTest::mouseClick(pane_.RefreshButton(), Qt::LeftButton);
        QCOMPARE(state(), u" box"_s);
        QTRY_COMPARE(state(), chooseManually);
        QCOMPARE(pane_.PrinterIP()->currentIndex(), 0);
        QCOMPARE(pane_.radiobtnPrinterModel()->selectedColumn(), 0);
        QCOMPARE(takeLog(home_).filter(u"Clicked"_s), QStringList{u"RefreshButtonClicked"_s});

        QTest::keyClick(pane_.PrinterIP(), Qt::Key_Down);
        writeFile(home_.selectionFile(), "KV260 10.0.0.5");
        clickType(0);
        QVERIFY(!QFile::exists(home_.selectionFile()));
        QCOMPARE(state(), u"10.0.0.5 refresh list type next previous"_s);
        QCOMPARE(pane_.PrinterIP()->count(), 3);
        QCOMPARE(takeLog(home_).join(u'|').section(u"$10.0.0.5|"_s, 1),
                 u"PrinterTypeClicked 0|Inside RemoveFile|Return from RemoveFile"_s);
    }

  private:
    void clickType(int row) {
        QTest::mouseClick(pane_.radiobtnPrinterType()->cellAt(row, 0), Qt::LeftButton, {}, QPoint(5, 5));
    }

    /// The address and what is shown and may be used, in words.
    [[nodiscard]] QString state() const {
        const std::pair<QString, bool> parts[] = {
            {u"box"_s, !pane_.PrinterIPInfoBox()->isHidden()},
            {u"refresh"_s, pane_.RefreshButton()->isEnabled()},
            {u"list"_s, pane_.PrinterIP()->isEnabled()},
            {u"field"_s, pane_.IPAddressText()->isEnabled()},
            {u"editable"_s, pane_.IPAddressText()->isEditable()},
            {u"model"_s, pane_.radiobtnPrinterModel()->isEnabled()},
            {u"type"_s, pane_.radiobtnPrinterType()->isEnabled()},
            {u"next"_s, pane_.isNextEnabled()},
            {u"previous"_s, pane_.isPreviousEnabled()},
            {u"busy"_s, !pane_.Progress()->isHidden() && pane_.Progress()->isAnimating()},
        };
        QString words = pane_.IPAddressText()->stringValue();
        for (const auto& [word, holds] : parts) {
            words += holds ? u' ' + word : QString();
        }
        return words;
    }

    const QString chooseManually = u" box refresh list field editable model type next previous"_s;
    TemporaryHome home_;
    NetworkPrinterConfigPane pane_;
};

QUAZEL_TEST_MAIN(TestPageDiscovery, QApplication)

#include "test_PageDiscovery.moc"

// A whole discovery as the user meets it, over real sockets, and one that can't be started.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QRegularExpression>
#include <QTest>

#include <pthread.h>

using namespace Qt::StringLiterals;

class TestPageDiscovery : public QObject {
    Q_OBJECT

  private slots:
    void findsPrinters() {
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
    }

    void endsAtOnceWithoutAThread() {
        SystemLogCapture systemLog;
        pthread_attr_t attributes;
        std::size_t stackSize = 0;
        ::pthread_getattr_default_np(&attributes);
        ::pthread_attr_getstacksize(&attributes, &stackSize);
        ::pthread_attr_setstacksize(&attributes, std::size_t(1) << 60);  // More than there are addresses.
        ::pthread_setattr_default_np(&attributes);
        QTest::mouseClick(pane_.RefreshButton(), Qt::LeftButton);
        ::pthread_attr_setstacksize(&attributes, stackSize);
        ::pthread_setattr_default_np(&attributes);
        QCOMPARE(state(), chooseManually);
        QCOMPARE(itemsOf(*pane_.PrinterIP()).join(u'|'), u"Enter IP Address Manually"_s);
        QVERIFY(!pane_.IsIPAvalaibleInList(u"10.0.0.5"_s));
        QCOMPARE(systemLog.take().filter(u"can't be started"_s).size(), 1);

        QTest::mouseClick(pane_.RefreshButton(), Qt::LeftButton);
        QTRY_COMPARE(state(), chooseManually);
        QVERIFY(takeLog(home_).contains(u"GetPrinterIPThread"_s));
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

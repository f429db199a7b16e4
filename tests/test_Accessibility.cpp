// The page as an assistive program meets it: what is heard of a search, and where Tab leads.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList heard;

/// What a screen reader would say of an event: names as they change, and where the focus goes.
void listen(QAccessibleEvent* event) {
    QAccessibleInterface* const from = event->accessibleInterface();
    if (from != nullptr && event->type() == QAccessible::NameChanged) {
        heard += u"name "_s + from->text(QAccessible::Name);
    } else if (from != nullptr && event->type() == QAccessible::Focus) {
        heard += u"focus "_s + from->text(QAccessible::Name);
    }
}

}  // namespace

class TestAccessibility : public QObject {
    Q_OBJECT

  private slots:
    void searchIsHeardAndTabFollowsTheEye() {
        const VirtualPrinters printers({u"10.0.0.5 answers "_s + deviceId(u"TVK KV260"_s)});
        const TemporaryHome home;
        NetworkPrinterConfigPane pane;
        QTRY_VERIFY(QAccessible::isActive());
        pane.awakeFromNib();
        pane.contentWidget()->show();
        QVERIFY(QTest::qWaitForWindowActive(pane.contentWidget()));
        pane.radiobtnPrinterType()->selectCellAtRow(0, 0);
        auto* const directly = pane.radiobtnPrinterType()->cellAt(0, 0);
        directly->setFocus();
        QAccessible::installUpdateHandler(listen);
        QTest::keyClick(directly, Qt::Key_Down);
        QTRY_VERIFY(pane.isNextEnabled());
        QAccessible::installUpdateHandler(nullptr);
        heard.removeDuplicates();
        const QString all = heard.join(u'|');
        QVERIFY2(all.contains(u"name Searching for printers|focus Searching for printers|"_s) &&
                     all.contains(u"|name Search finished. Printers found: 1|"_s),
                 qPrintable(all));
        for (QWidget* const next : std::initializer_list<QWidget*>{
                 pane.PrinterIP(), pane.RefreshButton(), pane.IPAddressText(),
                 pane.radiobtnPrinterModel()->cellAt(0, 0), pane.radiobtnPrinterType()->cellAt(1, 0)}) {
            QCOMPARE(QApplication::focusWidget(), next);
            QTest::keyClick(next, Qt::Key_Tab);
        }
    }
};

QUAZEL_TEST_MAIN(TestAccessibility, QApplication)

#include "test_Accessibility.moc"

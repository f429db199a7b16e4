// The page as an assistive program meets it: what each control is called, where Tab leads, and what is heard
// of a search.

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

/// Name with that of the label, and whether there is a description; the role it must have is checked.
QString spoken(QWidget* control, QAccessible::Role role) {
    QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(control);
    QString name = face->text(QAccessible::Name);
    for (const auto& [label, relation] : face->relations(QAccessible::Label)) {
        name = label->text(QAccessible::Name) + u' ' + name;
    }
    const bool isDescribed = !face->text(QAccessible::Description).isEmpty();
    return (face->role() == role ? name : u"another role"_s) + (isDescribed ? u", described"_s : QString());
}

}  // namespace

class TestAccessibility : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QTRY_VERIFY(QAccessible::isActive());
        pane_.awakeFromNib();
        pane_.didEnterPane(InstallerDirectionForward);
        pane_.contentWidget()->show();
        QVERIFY(QTest::qWaitForWindowActive(pane_.contentWidget()));
    }

    void controlsSayWhatTheyAre() {
        pane_.PrinterIP()->addItemWithObjectValue(u"Enter IP Address Manually"_s);
        pane_.PrinterIP()->selectItemAtIndex(0);
        const auto* const types = pane_.radiobtnPrinterType();
        const QStringList controls{
            spoken(types->cellAt(0, 0), QAccessible::RadioButton),
            spoken(types->cellAt(1, 0), QAccessible::RadioButton),
            spoken(pane_.PrinterIP(), QAccessible::ComboBox),
            spoken(pane_.RefreshButton(), QAccessible::PushButton),
            spoken(pane_.IPAddressText(), QAccessible::EditableText),
            spoken(pane_.PrinterModelBox(), QAccessible::Grouping),
            spoken(pane_.radiobtnPrinterModel()->cellAt(0, 3), QAccessible::RadioButton)};
        QCOMPARE(controls.join(u'|'),
                 u"Directly to this computer, described|Over the network, described|"
                 "Printer Found: Enter IP Address Manually, described|Printer Refresh, described|"
                 "Printer IP address: IP address:, described|Model|KV460"_s);
    }

    void searchIsHeardAndKeepsTheFocus() {
        const VirtualPrinters printers({u"10.0.0.5 answers "_s + deviceId(u"TVK KV260"_s)});
        auto* const directly = pane_.radiobtnPrinterType()->cellAt(0, 0);
        directly->setFocus();
        heard.clear();
        QAccessible::installUpdateHandler(listen);
        QTest::keyClick(directly, Qt::Key_Down);
        QTRY_VERIFY(pane_.isNextEnabled());
        QAccessible::installUpdateHandler(nullptr);
        heard.removeDuplicates();
        const QString all = heard.join(u'|');
        QVERIFY2(all.contains(u"name Searching for printers|focus Searching for printers|"_s) &&
                     all.contains(u"|name Search finished. Printers found: 1|"_s),
                 qPrintable(all));
        QCOMPARE(QApplication::focusWidget(), pane_.PrinterIP());
    }

    void tabFollowsTheEye() {
        QList<QWidget*> order{QApplication::focusWidget()};
        while (order.size() < 5) {
            QTest::keyClick(order.last(), Qt::Key_Tab);
            order += QApplication::focusWidget();
        }
        const QList<QWidget*> expected{pane_.PrinterIP(), pane_.RefreshButton(), pane_.IPAddressText(),
                                       pane_.radiobtnPrinterModel()->cellAt(0, 0),
                                       pane_.radiobtnPrinterType()->cellAt(1, 0)};
        QCOMPARE(order, expected);
    }

  private:
    TemporaryHome home_;
    NetworkPrinterConfigPane pane_;
};

QUAZEL_TEST_MAIN(TestAccessibility, QApplication)

#include "test_Accessibility.moc"

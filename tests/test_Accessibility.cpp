// The page as an assistive program meets it: what each control is called, where Tab leads, and what is heard
// of a search.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QApplication>
#include <QRadioButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList heard;

/// What a screen reader would say of an event: names as they change, and where the focus goes.
void listen(QAccessibleEvent* event) {
    QAccessibleInterface* const from = event->accessibleInterface();
    if (from == nullptr) {
        return;
    }
    if (event->type() == QAccessible::NameChanged) {
        heard += u"name "_s + from->text(QAccessible::Name);
    } else if (event->type() == QAccessible::Focus) {
        heard += u"focus "_s + from->text(QAccessible::Name);
    }
}

/// Role, name with that of the label, and description.
QString spoken(QWidget* control) {
    QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(control);
    QString name = face->text(QAccessible::Name);
    for (const auto& [label, relation] : face->relations(QAccessible::Label)) {
        name = label->text(QAccessible::Name) + u' ' + name;
    }
    const bool isDescribed = !face->text(QAccessible::Description).isEmpty();
    return u"%1: %2%3"_s.arg(static_cast<int>(face->role()), 0, 16)
        .arg(name, isDescribed ? u", described"_s : u""_s);
}

QString role(QAccessible::Role role) {
    return QString::number(static_cast<int>(role), 16) + u": "_s;
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
        QCOMPARE(spoken(types->cellAt(0, 0)),
                 role(QAccessible::RadioButton) + u"Directly to this computer, described"_s);
        QCOMPARE(spoken(types->cellAt(1, 0)),
                 role(QAccessible::RadioButton) + u"Over the network, described"_s);
        QCOMPARE(spoken(pane_.PrinterIP()),
                 role(QAccessible::ComboBox) + u"Printer Found: Enter IP Address Manually, described"_s);
        QCOMPARE(spoken(pane_.RefreshButton()),
                 role(QAccessible::PushButton) + u"Printer Refresh, described"_s);
        QCOMPARE(spoken(pane_.IPAddressText()),
                 role(QAccessible::EditableText) + u"Printer IP address: IP address:, described"_s);
        QCOMPARE(spoken(pane_.PrinterModelBox()), role(QAccessible::Grouping) + u"Model"_s);
        QCOMPARE(spoken(pane_.radiobtnPrinterModel()->cellAt(0, 3)),
                 role(QAccessible::RadioButton) + u"KV460"_s);
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
        QVERIFY2(heard.join(u'|').contains(u"name Searching for printers|focus Searching for printers|"_s) &&
                     heard.join(u'|').contains(u"|name Search finished. Printers found: 1|"_s),
                 qPrintable(heard.join(u'|')));
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

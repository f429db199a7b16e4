#include "support/PageFixtures.h"

#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "discovery/PrinterDiscovery.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTest>

#include <memory>
#include <utility>

BeepCounter::BeepCounter() {
    beep = [] { ++count_; };
}

BeepCounter::~BeepCounter() {
    beep = &QApplication::beep;
}

int BeepCounter::take() {
    return std::exchange(count_, 0);
}

AlertReader::AlertReader() {
    connect(&timer_, &QTimer::timeout, this, &AlertReader::closeAlert);
    timer_.start(1);
}

QStringList AlertReader::take() {
    return std::exchange(alerts_, {});
}

void AlertReader::closeAlert() {
    auto* const alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (alert == nullptr || !alert->isVisible()) {
        return;
    }
    QStringList texts{alert->text(), alert->informativeText()};
    for (const QAbstractButton* const button : alert->buttons()) {
        texts += button->text();
    }
    alerts_ += texts.join(QLatin1Char('|'));
    if (beforeClosing) {
        beforeClosing();
    }
    // What the test was doing when the alert came goes on at its own time.
    const QScopedValueRollback clock(QTest::lastMouseTimestamp);
    switch (closed_++ % 4) {
        case 0:
            QTest::keyClick(alert, Qt::Key_Return);
            break;
        case 1:
            QTest::keyClick(alert, Qt::Key_Escape);
            break;
        case 2:
            QTest::mouseClick(alert->buttons().constFirst(), Qt::LeftButton);
            break;
        default:
            alert->close();
    }
}

void setFoundPrinters(const QStringList& printers) {
    g_PrinterList = std::make_shared<QStringList>(QStringLiteral("Enter IP Address Manually\n"));
    for (const QString& printer : printers) {
        g_PrinterList->append(printer + QLatin1Char('\n'));
    }
}

QStringList itemsOf(const ComboBox& list) {
    QStringList items;
    for (int index = 0; index < list.count(); ++index) {
        items += list.itemText(index);
    }
    return items;
}

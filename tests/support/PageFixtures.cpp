#include "support/PageFixtures.h"

#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "discovery/PrinterDiscovery.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <utility>

BeepCounter::BeepCounter() {
    setBeep([this] { ++count_; });
}

BeepCounter::~BeepCounter() {
    setBeep({});
}

int BeepCounter::take() {
    return std::exchange(count_, 0);
}

AlertReader::AlertReader() {
    connect(&timer_, &QTimer::timeout, this, &AlertReader::closeAlert);
    timer_.start(5);
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
    const int way = closed_++ % 3;
    if (way == 2) {
        QTest::mouseClick(alert->buttons().constFirst(), Qt::LeftButton);
    } else {
        QTest::keyClick(alert, way == 0 ? Qt::Key_Return : Qt::Key_Escape);
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

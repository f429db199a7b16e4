#include "NetworkPrinterConfig/Alert.h"

#include <QMessageBox>

void runAlert(QWidget* parent, const QString& messageText, const QString& informativeText) {
    QMessageBox alert(parent);
    alert.setIcon(QMessageBox::Warning);
    alert.setWindowTitle(messageText);
    alert.setTextFormat(Qt::PlainText);
    alert.setText(messageText);
    alert.setInformativeText(informativeText);
    alert.setDefaultButton(alert.addButton(QStringLiteral("Ok"), QMessageBox::AcceptRole));
    alert.exec();
}

#include "NetworkPrinterConfig/Alert.h"

#include <QLabel>
#include <QMessageBox>

void runAlert(QWidget* parent, const QString& messageText, const QString& informativeText) {
    QMessageBox alert(parent);
    alert.setIcon(QMessageBox::Warning);
    alert.setWindowTitle(messageText);
    alert.setTextFormat(Qt::PlainText);
    alert.setText(messageText);
    alert.setInformativeText(informativeText);
    // Make the message bold, as some styles don't.
    if (auto* const message = alert.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont font = message->font();
        font.setBold(true);
        message->setFont(font);
    }
    alert.setDefaultButton(alert.addButton(QStringLiteral("Ok"), QMessageBox::AcceptRole));
    alert.exec();
}

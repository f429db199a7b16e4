#include "Installer/SummaryPane.h"

#include <QFile>
#include <QLabel>
#include <QStandardPaths>
#include <QVBoxLayout>

SummaryPane::SummaryPane(QObject* parent) : InstallerPane(parent) {
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    text_ = new QLabel(content);
    text_->setObjectName(QStringLiteral("summary"));
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    column->addWidget(text_);
    column->addStretch();
    setContentWidget(content);
}

void SummaryPane::didEnterPane(InstallerDirection /*direction*/) {
    QFile file(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
               QStringLiteral("/KV.txt"));
    constexpr qint64 longestLine = 64;
    const QString line =
        file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(longestLine)) : QString();
    if (line.isEmpty()) {
        text_->setText(
            tr("No network printer was chosen. The driver will be installed for a printer that is connected "
               "directly to this computer."));
        return;
    }
    const QString model = line.section(QLatin1Char(' '), 0, 0);
    const QString address = line.section(QLatin1Char(' '), 1);
    text_->setText(tr("The installation continues with this network printer:\n\nModel:\t%1\nAddress:\t%2")
                       .arg(model, address));
}

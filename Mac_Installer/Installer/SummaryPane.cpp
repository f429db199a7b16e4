#include "Installer/SummaryPane.h"

#include "Installer/InstallationPane.h"
#include "Installer/TextLabel.h"

#include <QFile>
#include <QFormLayout>
#include <QVBoxLayout>

#include <utility>

SummaryPane::SummaryPane(const InstallationPane* installation, HandOff handOff, QObject* parent)
    : InstallerPane(parent),
      installation_(installation),
      handOff_(std::move(handOff)),
      result_(new TextLabel),
      printer_(new QWidget),
      model_(new QLabel),
      address_(new QLabel),
      details_(new TextLabel) {
    result_->setObjectName(QStringLiteral("summary"));
    details_->setObjectName(QStringLiteral("reason"));
    auto* const form = new QFormLayout(printer_);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Model:"), model_);
    form->addRow(tr("Address:"), address_);
    for (QLabel* const value : {model_, address_}) {
        value->setTextFormat(Qt::PlainText);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    for (QWidget* const part : std::initializer_list<QWidget*>{result_, printer_, details_}) {
        column->addWidget(part);
    }
    column->addStretch();
    setContentWidget(content);
}

void SummaryPane::didEnterPane(InstallerDirection /*direction*/) {
    if (!handOff_.isChosen()) {
        show(tr("No network printer was chosen."), {},
             tr("To add a printer that is connected directly to this computer, use the printer settings of "
                "your desktop."));
        return;
    }
    const QString problem = handOff_.problem();
    if (!problem.isNull()) {
        show(tr("The chosen network printer couldn't be saved, so it is not set up."), {}, problem);
        return;
    }
    constexpr qint64 longestLine = 64;
    QFile file(handOffFile());
    const QString line =
        file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(longestLine)) : QString();
    const bool isReady = installation_ != nullptr && installation_->hasSucceeded();
    show(isReady ? tr("This network printer is ready to print:")
                 : tr("This network printer was chosen, but is not set up:"),
         line,
         installation_ != nullptr
             ? installation_->message()
             : tr("No steps of the installation are installed. The choice is saved in %1.")
                   .arg(file.fileName()));
}

/// `printer` is a line of the hand-off file, or null.
void SummaryPane::show(const QString& result, const QString& printer, const QString& details) {
    result_->setText(result);
    printer_->setVisible(!printer.isNull());
    model_->setText(printer.section(QLatin1Char(' '), 0, 0));
    address_->setText(printer.section(QLatin1Char(' '), 1));
    details_->setText(details);
    details_->setVisible(!details.isEmpty());
    // Screen readers read it with the sentence, which has the focus.
    result_->setAccessibleDescription((printer + QLatin1Char('\n') + details).trimmed());
}

#include "Installer/SummaryPane.h"

#include "Installer/HandOffFolder.h"
#include "Installer/InstallationPane.h"

#include <QFile>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

SummaryPane::SummaryPane(const InstallationPane* installation, QString problem, QObject* parent)
    : InstallerPane(parent), installation_(installation), problem_(std::move(problem)) {
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
    QFile file(handOffFile());
    if (installation_ == nullptr && !problem_.isNull()) {
        text_->setText(tr("Nothing was set up.") + QStringLiteral("\n\n") + problem_);
        return;
    }
    if (!file.exists()) {
        text_->setText(
            tr("No network printer was chosen. To add a printer that is connected directly to this "
               "computer, use the printer settings of your desktop."));
        return;
    }
    constexpr qint64 longestLine = 64;
    const QString line =
        file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(longestLine)) : QString();
    const bool isReady = installation_ != nullptr && installation_->hasSucceeded();
    text_->setText(tr("%1\n\nModel:\t%2\nAddress:\t%3\n\n%4")
                       .arg(isReady ? tr("This network printer is ready to print:")
                                    : tr("This network printer was chosen, but is not set up:"),
                            line.section(QLatin1Char(' '), 0, 0), line.section(QLatin1Char(' '), 1),
                            installation_ != nullptr
                                ? installation_->message()
                                : tr("No steps of the installation are installed. The choice is saved in %1.")
                                      .arg(file.fileName())));
}

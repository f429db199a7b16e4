#include "Installer/InstallationPane.h"

#include "Installer/HandOffFolder.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

InstallationPane::InstallationPane(QStringList steps, QObject* parent)
    : InstallerPane(parent),
      steps_(std::move(steps)),
      status_(new QLabel),
      progress_(new QProgressBar),
      tryAgain_(new QPushButton(tr("Try &Again"))),
      toggle_(new QPushButton),
      details_(new QPlainTextEdit) {
    status_->setObjectName(QStringLiteral("status"));
    status_->setTextFormat(Qt::PlainText);
    status_->setWordWrap(true);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    progress_->setRange(0, 0);  // A step doesn't tell how far it is.
    progress_->setTextVisible(false);
    progress_->setFocusPolicy(Qt::TabFocus);  // The only control that is needed meanwhile.
    tryAgain_->setObjectName(QStringLiteral("tryAgain"));
    details_->setAccessibleName(tr("Details"));
    details_->setReadOnly(true);
    details_->setTabChangesFocus(true);
    details_->setMaximumBlockCount(1000);
    details_->setMinimumHeight(8 * details_->fontMetrics().lineSpacing());
    toggle_->setAutoDefault(false);

    auto* const content = new QWidget;
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(tryAgain_);
    buttons->addWidget(toggle_);
    buttons->addStretch();
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(progress_);
    column->addWidget(status_);
    column->addLayout(buttons);
    column->addWidget(details_, 1);
    column->addStretch();
    setContentWidget(content);
    showDetails(false);

    connect(tryAgain_, &QPushButton::clicked, this, &InstallationPane::run);
    connect(toggle_, &QPushButton::clicked, this, [this] { showDetails(details_->isHidden()); });
    connect(&runner_, &StepRunner::lineWritten, this, &InstallationPane::showLine);
    connect(&runner_, &StepRunner::finished, this, &InstallationPane::showResult);
}

void InstallationPane::didEnterPane(InstallerDirection direction) {
    if (direction == InstallerDirectionForward) {
        run();
    }
}

void InstallationPane::run() {
    const bool isNeeded = QFile::exists(handOffFile());
    setRunning(isNeeded);
    if (tryAgain_->hasFocus()) {
        progress_->setFocus();
    }
    tryAgain_->hide();
    toggle_->setVisible(isNeeded);
    showDetails(isNeeded && !details_->isHidden());
    details_->clear();
    showState(isNeeded ? tr("Setting up the printer ...")
                       : tr("No network printer was chosen, so there is nothing to set up."));
    if (isNeeded) {
        runner_.start(steps_, handOffFile());
    }
}

void InstallationPane::setRunning(bool isRunning) {
    progress_->setVisible(isRunning);
    setNextEnabled(!isRunning);
    setPreviousEnabled(!isRunning);
}

/// A screen reader reads the new name of the progress bar, which has the focus; not every line of a step.
void InstallationPane::showState(const QString& state) {
    progress_->setAccessibleName(state);
    status_->setText(state);
}

void InstallationPane::showLine(const QString& line) {
    status_->setText(progress_->accessibleName() + QStringLiteral("\n\n") + line);
    details_->appendPlainText(line);
}

void InstallationPane::showResult(bool succeeded, const QString& message) {
    hasSucceeded_ = succeeded;
    message_ = message;
    const QString state = succeeded ? tr("The printer is set up.") : tr("The printer is not set up.");
    showState(state + QStringLiteral("\n\n") + message);
    const bool focusFollows = progress_->hasFocus();  // Unless the user has moved the focus meanwhile.
    setRunning(false);
    tryAgain_->setVisible(!succeeded);
    if (focusFollows) {
        (succeeded ? toggle_ : tryAgain_)->setFocus();
    }
}

void InstallationPane::showDetails(bool isShown) {
    details_->setVisible(isShown);
    toggle_->setText(isShown ? tr("Hide &Details") : tr("Show &Details"));
}

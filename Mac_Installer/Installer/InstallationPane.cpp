#include "Installer/InstallationPane.h"

#include "Installer/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace {

/// Unlike hasFocus(), also while another window is active, such as a password dialog.
bool hasFocusInWindow(const QWidget* widget) {
    return widget->window()->focusWidget() == widget;
}

}  // namespace

InstallationPane::InstallationPane(QStringList steps, HandOff handOff, QObject* parent)
    : InstallerPane(parent),
      steps_(std::move(steps)),
      handOff_(std::move(handOff)),
      status_(new TextLabel),
      progress_(new QProgressBar),
      tryAgain_(new QPushButton(tr("Try &Again"))),
      toggle_(new QPushButton),
      details_(new QPlainTextEdit) {
    status_->setObjectName(QStringLiteral("status"));
    progress_->setRange(0, 0);  // A step doesn't tell how far it is.
    progress_->setTextVisible(false);
    progress_->setFocusPolicy(Qt::TabFocus);  // It holds the focus while the buttons are disabled.
    tryAgain_->setObjectName(QStringLiteral("tryAgain"));
    details_->setAccessibleName(tr("Details"));
    details_->setReadOnly(true);
    details_->setTabChangesFocus(true);
    details_->setMaximumBlockCount(1000);
    details_->setMinimumHeight(8 * details_->fontMetrics().lineSpacing());

    auto* const content = new QWidget;
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(toggle_);
    buttons->addWidget(tryAgain_);  // Last, so that hiding it moves no button under the pointer.
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
    setRunning(true);
    if (hasFocusInWindow(tryAgain_)) {
        progress_->setFocus();
    }
    tryAgain_->hide();
    details_->clear();
    showState(tr("Setting up the printer…"));
    const QString problem = handOff_.problem();
    if (problem.isNull()) {
        runner_.start(steps_, handOffFile());
    } else {
        showResult(false, problem);
        tryAgain_->hide();  // Only another choice helps.
    }
}

void InstallationPane::setRunning(bool isRunning) {
    progress_->setVisible(isRunning);
    setNextEnabled(!isRunning);
    setPreviousEnabled(!isRunning);
}

/// Screen readers read the name of the progress bar, which has the focus meanwhile; not every line of a step.
void InstallationPane::showState(const QString& state) {
    progress_->setAccessibleName(state);
    status_->setText(state);
}

void InstallationPane::showLine(const QString& line) {
    constexpr qsizetype longest = 200;  // A long line without spaces would widen the page.
    if (!line.isEmpty()) {
        status_->setText(progress_->accessibleName() + QStringLiteral("\n\n") + line.left(longest));
    }
    details_->appendPlainText(line);
}

void InstallationPane::showResult(bool succeeded, const QString& message) {
    hasSucceeded_ = succeeded;
    message_ = message;
    const QString state = !succeeded            ? tr("The printer is not set up.")
                          : handOff_.isChosen() ? tr("The printer is set up.")
                                                : tr("No network printer was chosen, so there is "
                                                     "nothing to set up.");
    showState((state + QStringLiteral("\n\n") + message).trimmed());
    const bool focusFollows = hasFocusInWindow(progress_);  // Unless the user has moved the focus meanwhile.
    setRunning(false);
    tryAgain_->setVisible(!succeeded);
    if (focusFollows) {
        QPushButton* const next = succeeded ? toggle_ : tryAgain_;
        next->setAccessibleDescription(status_->text());  // Screen readers read it with the button.
        next->setFocus();
    }
}

void InstallationPane::showDetails(bool isShown) {
    details_->setVisible(isShown);
    toggle_->setText(isShown ? tr("Hide &Details") : tr("Show &Details"));
}

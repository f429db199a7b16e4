// The page that runs the steps of the installation when it is entered forwards, and shows their progress.
// They also run if no network printer was chosen, but not if the choice couldn't be
// saved, or an earlier one couldn't be removed.
//
// Continue and Go Back are disabled meanwhile; after a failure, the user can also continue.

#pragma once

#include "Installer/HandOff.h"
#include "Installer/StepRunner.h"
#include "InstallerPlugins/InstallerPane.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

class InstallationPane : public InstallerPane {
    Q_OBJECT

  public:
    /// `steps` are executables, as StepRunner::stepsIn returns them.
    InstallationPane(QStringList steps, HandOff handOff, QObject* parent = nullptr);

    [[nodiscard]] QString title() const override { return tr("Installation"); }
    void didEnterPane(InstallerDirection direction) override;

    /// The result of the last run, as StepRunner::finished reports it.
    [[nodiscard]] bool hasSucceeded() const { return hasSucceeded_; }
    [[nodiscard]] QString message() const { return message_; }

  private:
    void run();
    void setRunning(bool isRunning);
    void showState(const QString& state);
    void showLine(const QString& line);
    void showResult(bool succeeded, const QString& message);
    void showDetails(bool isShown);

    QStringList steps_;
    HandOff handOff_;
    bool hasSucceeded_ = false;
    QString message_;
    QLabel* status_;
    QProgressBar* progress_;
    QPushButton* tryAgain_;
    QPushButton* toggle_;
    QPlainTextEdit* details_;
    StepRunner runner_;  // destroyed first: its step is ended while the page still exists
};

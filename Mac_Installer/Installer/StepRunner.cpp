#include "Installer/StepRunner.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

namespace {

constexpr std::chrono::seconds patience(5);  // between SIGTERM and SIGKILL
constexpr qint64 longestLine = 4096;         // bytes; more are shown as another line

/// In the child, between fork and exec: leaves the terminal, so that it can't ask there, and resets the
/// signals that the installer ignores or blocks.
void prepareChild() {
    ::setsid();
    for (int number = 1; number < NSIG; ++number) {
        (void)std::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

QStringList StepRunner::stepsIn(const QString& folder) {
    if (folder.isEmpty()) {
        return {};  // QDir would take the working directory.
    }
    const QDir directory(folder);
    const QStringList files = directory.entryList(QDir::Files | QDir::System, QDir::Name);
    QStringList steps;
    for (const QString& name : files.filter(QRegularExpression(QStringLiteral(R"(\A[A-Za-z0-9_-]+\z)")))) {
        steps += directory.absoluteFilePath(name);
    }
    return steps;
}

QString StepRunner::installedFolder() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/" QUAZEL_STEPS_FROM_BIN));
}

StepRunner::StepRunner(QObject* parent) : QObject(parent) {
    // Inherit the children that a step leaves, to see when its process group is empty.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    process_.setChildProcessModifier(prepareChild);
    process_.setStandardInputFile(QProcess::nullDevice());
    connect(&process_, &QProcess::readyReadStandardOutput, this, [this] { readLines(false); });
    connect(&process_, &QProcess::readyReadStandardError, this, [this] { readLines(false); });
    connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            endStep(tr("%1 can't be run: %2").arg(process_.program(), process_.errorString()));
        }
    });
    connect(&process_, &QProcess::finished, this, [this](int number, QProcess::ExitStatus status) {
        readLines(true);
        const QString problem = status == QProcess::CrashExit ? tr("%1 was ended by the signal %2")
                                                              : tr("%1 failed with the status %2");
        const bool hasSucceeded = status == QProcess::NormalExit && number == 0;
        endStep(hasSucceeded ? QString() : problem.arg(process_.program(), QString::number(number)));
    });
}

StepRunner::~StepRunner() {
    process_.disconnect(this);
    if (group_ == 0) {
        return;
    }
    process_.waitForStarted();  // The child may not have called setsid() yet.
    for (const int number : {SIGTERM, SIGKILL}) {
        ::kill(static_cast<pid_t>(-group_), number);
        waitForGroup();
    }
}

/// Waits until the process group is empty, for `patience` at most.
void StepRunner::waitForGroup() {
    const auto group = static_cast<pid_t>(-group_);
    for (const QDeadlineTimer deadline(patience); ::kill(group, 0) == 0 && !deadline.hasExpired();) {
        if (process_.state() == QProcess::NotRunning || process_.waitForFinished(10)) {
            (void)::waitpid(group, nullptr, WNOHANG);  // Not the step itself, which is QProcess's.
            QThread::msleep(10);
        }
    }
}

void StepRunner::start(const QStringList& steps, const QString& argument) {
    steps_ = steps;
    argument_ = argument;
    results_.clear();
    runNext();
}

void StepRunner::runNext() {
    if (steps_.isEmpty()) {
        emit finished(true, results_.join(QLatin1Char('\n')));
        return;
    }
    last_ = {};
    process_.start(steps_.takeFirst(), {argument_});
    group_ = process_.processId();
}

/// Reads the complete lines, or all at the end of the step.
void StepRunner::readLines(bool isEnded) {
    for (const auto channel : {QProcess::StandardOutput, QProcess::StandardError}) {
        process_.setReadChannel(channel);
        while (process_.canReadLine() || process_.bytesAvailable() >= (isEnded ? 1 : longestLine)) {
            const QString line = QString::fromLocal8Bit(process_.readLine(longestLine)).trimmed();
            qInfo("%s: %s", qUtf8Printable(QFileInfo(process_.program()).fileName()), qUtf8Printable(line));
            emit lineWritten(line);
            if (!line.isEmpty()) {
                last_[channel] = line;
            }
        }
    }
}

/// `problem` is null for success; it is used if the step hasn't said why it failed.
void StepRunner::endStep(const QString& problem) {
    if (group_ != 0) {
        // Processes left by the step would outlive the installer.
        ::kill(static_cast<pid_t>(-group_), SIGKILL);
        group_ = 0;
    }
    const QString& lastOutput = last_[QProcess::StandardOutput];
    const QString& lastError = last_[QProcess::StandardError];
    if (problem.isNull()) {
        results_ += lastOutput.isEmpty() ? QStringList() : QStringList(lastOutput);
        runNext();
    } else if (lastError.isEmpty()) {
        qWarning("%s", qUtf8Printable(problem));
        emit finished(false, problem);
    } else {
        emit finished(false, lastError);
    }
}

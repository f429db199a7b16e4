// Runs the steps of the installation: the executables in a folder, one after the other, until one fails. The
// contract of a step is in docs/ARCHITECTURE.md.

#pragma once

#include <QObject>
#include <QProcess>
#include <QStringList>

#include <array>

class StepRunner : public QObject {
    Q_OBJECT

  public:
    /// The paths of the steps in `folder`, in the order of their names. By the rules of run-parts(8), names
    /// have only letters, digits, "_" and "-", and folders are ignored. But a file that can't be run is a
    /// step, which fails. Empty if the folder can't be read.
    [[nodiscard]] static QStringList stepsIn(const QString& folder);

    /// The folder of the installed steps.
    [[nodiscard]] static QString installedFolder();

    explicit StepRunner(QObject* parent = nullptr);
    /// Ends the running step: SIGTERM to its process group, and after five seconds SIGKILL. Waits for that.
    ~StepRunner() override;

    /// Runs the steps with `argument`, asynchronously. Not while it is running. Main thread.
    void start(const QStringList& steps, const QString& argument);

  signals:
    /// A step has written a line to its standard output or error. It is in the system log already.
    void lineWritten(const QString& line);
    /// All steps have succeeded, and `message` has the last line of the standard output of each. Or one has
    /// failed, and `message` says why: the last line of its standard error.
    void finished(bool succeeded, const QString& message);

  private:
    void waitForGroup();
    void runNext();
    void readLines(bool isEnded);
    void endStep(const QString& problem);

    QProcess process_;
    qint64 group_ = 0;  // process group of the running step, or 0
    QStringList steps_;
    QString argument_;
    QStringList results_;
    std::array<QString, 2> last_;  // line that is not empty, by channel
};

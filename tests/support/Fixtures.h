// Shared by the tests: main(), a temporary home folder, access to both logs, spawned programs and virtual
// printers.

#pragma once

#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <utility>

// QTRY_VERIFY of Qt 6.8 contains a narrowing conversion.
#pragma GCC diagnostic ignored "-Wconversion"

using namespace Qt::StringLiterals;

template <class Test, class Application>
int runTest(int argc, char** argv, bool needsPrivateNetwork) {
    if (needsPrivateNetwork && qgetenv("QUAZEL_PRIVATE_NETWORK") != "10.0.0") {
        std::puts("SKIPPED: needs a private network (run it by tools/private-network --bridge)");
        return 77;  // SKIP_RETURN_CODE
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// main() of a test program, at the end of its source file.
#define QUAZEL_TEST_MAIN(Class, Application)                                   \
    int main(int argc, char** argv) {                                          \
        return runTest<Class, Application>(argc, argv, NEEDS_PRIVATE_NETWORK); \
    }

/// A temporary home folder for the process's documents and settings, removed with this object. Create it
/// before any path is looked up.
class TemporaryHome {
  public:
    TemporaryHome();

    [[nodiscard]] QString path() const { return folder_.path(); }
    [[nodiscard]] QString documents() const { return folder_.filePath(u"Documents"_s); }
    [[nodiscard]] QString selectionFile() const { return documents() + u"/KV.txt"_s; }
    [[nodiscard]] QString log() const { return documents() + u"/QzInstall.log"_s; }

  private:
    QTemporaryDir folder_;
};

/// A file's bytes; null if it can't be read.
[[nodiscard]] QByteArray contentOf(const QString& path);

/// Returns the path.
QString writeFile(const QString& path, const QByteArray& content);

/// The messages of the diagnostic log since the last call, without the build date and tab before each.
/// Each line of a multi-line message is a separate item.
[[nodiscard]] QStringList takeLog(const TemporaryHome& home);

/// Captures the lines of the category "quazel.page" during its lifetime. One at a time; create it after the
/// test has started, as Qt Test installs its own message handler.
class SystemLogCapture {
  public:
    SystemLogCapture() { previous_ = qInstallMessageHandler(append); }
    Q_DISABLE_COPY_MOVE(SystemLogCapture)
    ~SystemLogCapture() { qInstallMessageHandler(previous_); }

    /// The lines since the last call.
    [[nodiscard]] QStringList take() { return std::exchange(lines_, {}); }

  private:
    static void append(QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (qstrcmp(context.category, "quazel.page") == 0) {
            lines_ += message.split(u'\n');
        } else {
            previous_(type, context, message);
        }
    }

    static inline QStringList lines_;
    static inline QtMessageHandler previous_ = nullptr;
};

/// A child process, killed with this object or when the test exits in any way. Not a QProcess: the way it
/// starts programs looks like a fork of the test to ThreadSanitizer, which then stops reporting.
class SpawnedProgram {
  public:
    /// Runs a shell command with the test's environment and standard error.
    explicit SpawnedProgram(const QString& command);
    Q_DISABLE_COPY_MOVE(SpawnedProgram)
    ~SpawnedProgram() { end(SIGKILL); }

    /// Waits for the next line of its standard output; empty at the end.
    [[nodiscard]] QByteArray readLine();

    void send(int signal) const { ::kill(pid_, signal); }

    /// Sends the signal and waits until the process has ended.
    void end(int signal);

  private:
    FILE* output_;  // null once it has ended
    int pid_;
};

/// A virtual-printers process, stopped with this object. Needs a private network.
struct VirtualPrinters : SpawnedProgram {
    /// `lines` as in the tool's list file. Returns when all printers listen.
    explicit VirtualPrinters(const QStringList& lines);
};

/// A complete device id with the given model text.
[[nodiscard]] QString deviceId(const QString& model);

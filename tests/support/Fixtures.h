// What several tests stand on: main(), a home folder of their own, both logs read back, and a subnet of
// printers.

#pragma once

#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <utility>

// QTRY_VERIFY of Qt 6.8 narrows a duration where it is used.
#pragma GCC diagnostic ignored "-Wconversion"

using namespace Qt::StringLiterals;

template <class Test, class Application>
int runTest(int argc, char** argv, bool needsPrivateNetwork) {
    if (needsPrivateNetwork && qgetenv("QUAZEL_PRIVATE_NETWORK") != "10.0.0") {
        std::puts("SKIPPED: needs a network of its own (tools/private-network --bridge)");
        return 77;  // By which ctest knows a skipped test.
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

/// A home folder that lasts as long as this object; the process's documents and settings lie in it. Made
/// before anything asks for a folder.
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

/// A file's bytes; null when it can't be read.
[[nodiscard]] QByteArray contentOf(const QString& path);

/// Returns the path.
QString writeFile(const QString& path, const QByteArray& content);

/// The messages of the diagnostic log since the last call, without the build date and tab before each.
/// Continuation lines of a message are lines of their own.
[[nodiscard]] QStringList takeLog(const TemporaryHome& home);

/// Catches the lines of the category "quazel.page" as long as it lives. One at a time, made after the test
/// has begun, as Qt Test has a handler of its own.
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

/// A program in a process of its own. Ends with this object, and with the test should that die. Not a
/// QProcess: ThreadSanitizer takes the way that starts one for a fork of the test, and reports nothing from
/// then on.
class SpawnedProgram {
  public:
    /// A command of the shell; it shares the test's environment and standard error.
    explicit SpawnedProgram(const QString& command);
    Q_DISABLE_COPY_MOVE(SpawnedProgram)
    ~SpawnedProgram() { end(SIGKILL); }

    /// The next line of its standard output, waited for; empty at the end.
    [[nodiscard]] QByteArray readLine();

    void send(int signal) const { ::kill(pid_, signal); }

    /// Sends the signal and waits for the end.
    void end(int signal);

  private:
    FILE* output_;  // null once it has ended
    int pid_;
};

/// A subnet of printers in a process of its own; needs a network of its own. Ends with this object.
class VirtualPrinters {
  public:
    /// Lines as the tool takes them. Returns when all listen.
    explicit VirtualPrinters(const QStringList& lines);

  private:
    QTemporaryDir folder_;
    SpawnedProgram process_;
};

/// A complete device id of the series' form with the given model text.
[[nodiscard]] QString deviceId(const QString& model);

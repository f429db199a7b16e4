// Shared by the tests: main(), a temporary home folder, both logs, spawned programs and virtual printers.

#pragma once

#include "BuildDate.h"

#include <QtTest>

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

/// A temporary home folder, removed with this object. Create it before any path is looked up.
class TemporaryHome {
  public:
    TemporaryHome() {
        QDir(path()).mkpath(u"Documents"_s);
        qputenv("HOME", path().toUtf8());
        qunsetenv("XDG_CONFIG_HOME");
    }

    [[nodiscard]] QString path() const { return folder_.path(); }
    [[nodiscard]] QString documents() const { return folder_.filePath(u"Documents"_s); }
    [[nodiscard]] QString selectionFile() const { return documents() + u"/KV.txt"_s; }
    [[nodiscard]] QString log() const { return documents() + u"/QzInstall.log"_s; }

  private:
    QTemporaryDir folder_;
};

/// A file's bytes; null if it can't be read.
[[nodiscard]] inline QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("can't write %s", qUtf8Printable(path));
    }
}

/// The messages of the diagnostic log since the last call, without the build date and tab before each.
/// Each line of a multi-line message is a separate item.
[[nodiscard]] inline QStringList takeLog(const TemporaryHome& home) {
    QString text = u'\n' + QString::fromUtf8(contentOf(home.log()));
    text.replace(u"\n" QUAZEL_BUILD_DATE "\t"_s, u"\n"_s);
    QFile::remove(home.log());
    text.chop(text.endsWith(u'\n') ? 1 : 0);  // The newline of the last record.
    return text.split(u'\n').mid(1);
}

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
    explicit SpawnedProgram(const QString& command)
        : output_(::popen(qPrintable(u"echo $$; exec setpriv --pdeathsig KILL "_s + command), "re")),
          pid_(readLine().toInt()) {}
    Q_DISABLE_COPY_MOVE(SpawnedProgram)
    ~SpawnedProgram() {
        send(SIGKILL);
        ::pclose(output_);
    }

    /// Waits for the next line of its standard output; empty at the end.
    [[nodiscard]] QByteArray readLine() {
        QByteArray line(256, '\0');
        return std::fgets(line.data(), 256, output_) == nullptr ? QByteArray() : QByteArray(line.constData());
    }

    void send(int signal) const { ::kill(pid_, signal); }

  private:
    FILE* output_;
    int pid_;
};

/// A virtual-printers process, stopped with this object. Needs a private network.
struct VirtualPrinters : SpawnedProgram {
    /// `lines` as in the tool's list file. Returns when all printers listen.
    explicit VirtualPrinters(const QStringList& lines)
        : SpawnedProgram(QStringLiteral(QUAZEL_SOURCE_DIR "/tools/virtual-printers /dev/stdin <<'END'\n") +
                         lines.join(u'\n') + u"\nEND"_s) {
        if (readLine() != "ready\n") {
            qFatal("virtual-printers does not start");
        }
    }
};

/// A complete device ID with the given model text.
[[nodiscard]] inline QString deviceId(const QString& model) {
    return u"MFG:Tovik;CMD:X;MDL:%1;CLS:PRINTER;DES:card printer;SERN:A1"_s.arg(model);
}

// What several tests stand on: a home folder of their own, the diagnostic log read back, and a subnet of
// printers.

#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>

/// A home folder that lasts as long as this object; the process's documents and settings lie in it. Made
/// before anything asks for a folder.
class TemporaryHome {
  public:
    TemporaryHome();

    [[nodiscard]] QString path() const { return folder_.path(); }
    [[nodiscard]] QString documents() const { return folder_.filePath(QStringLiteral("Documents")); }
    [[nodiscard]] QString selectionFile() const { return documents() + QStringLiteral("/KV.txt"); }
    [[nodiscard]] QString log() const { return documents() + QStringLiteral("/QzInstall.log"); }

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

/// A program in a process of its own. Ends with this object, and with the test should that die. Not a
/// QProcess: ThreadSanitizer takes the way that starts one for a fork of the test, and reports nothing from
/// then on.
class SpawnedProgram {
  public:
    /// A command of the shell; it shares the test's environment and standard error.
    explicit SpawnedProgram(const QString& command);
    SpawnedProgram(const SpawnedProgram&) = delete;
    SpawnedProgram& operator=(const SpawnedProgram&) = delete;
    ~SpawnedProgram() { end(SIGKILL); }

    /// The next line of its standard output, waited for; empty at the end.
    [[nodiscard]] QByteArray readLine();

    void send(int signal) const { ::kill(pid_, signal); }

    /// Sends the signal and waits for the end; 0 when the program exits with that status.
    int end(int signal);

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

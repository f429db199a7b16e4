#include "support/Fixtures.h"

#include "BuildDate.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <vector>

TemporaryHome::TemporaryHome() {
    QDir(folder_.path()).mkpath(QStringLiteral("Documents"));
    qputenv("HOME", folder_.path().toUtf8());
    for (const char* const name :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_DOCUMENTS_DIR"}) {
        qunsetenv(name);
    }
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("can't write %s", qUtf8Printable(path));
    }
}

QStringList takeLog(const TemporaryHome& home) {
    QString text = QLatin1Char('\n') + QString::fromUtf8(contentOf(home.log()));
    text.replace(QStringLiteral("\n" QUAZEL_BUILD_DATE "\t"), QStringLiteral("\n"));
    QFile::remove(home.log());
    QStringList lines = text.split(QLatin1Char('\n')).mid(1);
    if (lines.last().isEmpty()) {
        lines.removeLast();  // The last record's own line end.
    }
    return lines;
}

SpawnedProgram::SpawnedProgram(const QStringList& commandLine) {
    std::vector<QByteArray> texts{"setpriv", "--pdeathsig", "KILL"};
    for (const QString& text : commandLine) {
        texts.push_back(QFile::encodeName(text));
    }
    std::vector<char*> arguments;
    for (QByteArray& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);

    int ends[2] = {-1, -1};
    posix_spawn_file_actions_t actions;
    const bool isPrepared = ::pipe2(ends, O_CLOEXEC) == 0 && ::posix_spawn_file_actions_init(&actions) == 0 &&
                            ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO) == 0;
    if (!isPrepared ||
        ::posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
        qFatal("can't start %s", qUtf8Printable(commandLine.first()));
    }
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    output_.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
}

SpawnedProgram::~SpawnedProgram() {
    if (pid_ != 0) {
        (void)terminate(10000);
    }
}

int SpawnedProgram::terminate(int limit) {
    ::kill(pid_, SIGTERM);
    int status = 0;
    for (int waited = 0; ::waitpid(pid_, &status, WNOHANG) != pid_; waited += 5) {
        if (waited >= limit) {
            return -1;
        }
        QTest::qSleep(5);
    }
    pid_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

VirtualPrinters::VirtualPrinters(const QStringList& lines) {
    const QString list = folder_.filePath(QStringLiteral("printers"));
    writeFile(list, lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    process_ = std::make_unique<SpawnedProgram>(
        QStringList{programPath(QStringLiteral("virtual-printers")), QStringLiteral("--record"),
                    folder_.filePath(QStringLiteral("record")), list});
    if (process_->readLine() != "ready\n") {
        qFatal("the virtual printers do not get ready");
    }
}

QStringList VirtualPrinters::requests() const {
    return QString::fromUtf8(contentOf(folder_.filePath(QStringLiteral("record"))))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString deviceId(const QString& model) {
    return QStringLiteral("MFG:Tovik;CMD:X;MDL:%1;CLS:PRINTER;DES:card printer;SERN:A1").arg(model);
}

QString sourcePath(const QString& path) {
    return QStringLiteral(QUAZEL_SOURCE_DIR "/") + path;
}

QString programPath(const QString& name) {
    return QStringLiteral(QUAZEL_BIN_DIR "/") + name;
}

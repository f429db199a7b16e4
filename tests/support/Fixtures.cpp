#include "support/Fixtures.h"

#include "BuildDate.h"

#include <QDir>
#include <QFile>

#include <sys/wait.h>

#include <array>
#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;

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

SpawnedProgram::SpawnedProgram(const QString& command)
    : output_(::popen(qPrintable(u"echo $$; exec setpriv --pdeathsig KILL "_s + command), "re")),
      pid_(readLine().toInt()) {}

SpawnedProgram::~SpawnedProgram() {
    if (output_ != nullptr) {
        terminate();
    }
}

QByteArray SpawnedProgram::readLine() {
    std::array<char, 256> line{};
    return std::fgets(line.data(), line.size(), output_) == nullptr ? QByteArray() : QByteArray(line.data());
}

int SpawnedProgram::terminate() {
    ::kill(pid_, SIGTERM);
    const int status = ::pclose(std::exchange(output_, nullptr));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

VirtualPrinters::VirtualPrinters(const QStringList& lines) {
    const QString list = folder_.filePath(u"printers"_s);
    writeFile(list, lines.join(u'\n').toUtf8() + '\n');
    process_ = std::make_unique<SpawnedProgram>(
        u"%1 --record %2 %3"_s.arg(programPath(u"virtual-printers"_s), folder_.filePath(u"record"_s), list));
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

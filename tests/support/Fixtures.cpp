#include "support/Fixtures.h"

#include "BuildDate.h"

#include <QDir>
#include <QFile>

TemporaryHome::TemporaryHome() {
    QDir(path()).mkpath(u"Documents"_s);
    qputenv("HOME", path().toUtf8());
    qunsetenv("XDG_CONFIG_HOME");
    qunsetenv("XDG_DOCUMENTS_DIR");
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("can't write %s", qUtf8Printable(path));
    }
    return path;
}

QStringList takeLog(const TemporaryHome& home) {
    QString text = u'\n' + QString::fromUtf8(contentOf(home.log()));
    text.replace(u"\n" QUAZEL_BUILD_DATE "\t"_s, u"\n"_s);
    QFile::remove(home.log());
    text.chop(text.endsWith(u'\n') ? 1 : 0);  // The line end of the last record.
    return text.split(u'\n').mid(1);
}

SpawnedProgram::SpawnedProgram(const QString& command)
    : output_(::popen(qPrintable(u"echo $$; exec setpriv --pdeathsig KILL "_s + command), "re")),
      pid_(readLine().toInt()) {}

QByteArray SpawnedProgram::readLine() {
    QByteArray line(256, '\0');
    return std::fgets(line.data(), 256, output_) == nullptr ? QByteArray() : QByteArray(line.constData());
}

void SpawnedProgram::end(int signal) {
    if (output_ != nullptr) {
        send(signal);
        ::pclose(std::exchange(output_, nullptr));
    }
}

VirtualPrinters::VirtualPrinters(const QStringList& lines)
    : SpawnedProgram(QStringLiteral(QUAZEL_BIN_DIR "/virtual-printers /dev/stdin <<'END'\n") +
                     lines.join(u'\n') + u"\nEND"_s) {
    if (readLine() != "ready\n") {
        qFatal("virtual-printers does not start");
    }
}

QString deviceId(const QString& model) {
    return u"MFG:Tovik;CMD:X;MDL:%1;CLS:PRINTER;DES:card printer;SERN:A1"_s.arg(model);
}

#include "support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QTest>

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
    const QString prefix = QStringLiteral(QUAZEL_BUILD_DATE "\t");
    QStringList lines = QString::fromUtf8(contentOf(home.log())).split(QLatin1Char('\n'));
    QFile::remove(home.log());
    if (lines.last().isEmpty()) {
        lines.removeLast();  // The last record's own line end.
    }
    for (QString& line : lines) {
        if (line.startsWith(prefix)) {
            line.remove(0, prefix.size());
        }
    }
    return lines;
}

VirtualPrinters::VirtualPrinters(const QStringList& lines) {
    const QString list = folder_.filePath(QStringLiteral("printers"));
    writeFile(list, lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(programPath(QStringLiteral("virtual-printers")),
                   {QStringLiteral("--record"), folder_.filePath(QStringLiteral("record")), list});
    if (!process_.waitForReadyRead() || process_.readLine() != "ready\n") {
        qFatal("the virtual printers do not get ready");
    }
}

VirtualPrinters::~VirtualPrinters() {
    process_.terminate();
    process_.waitForFinished();
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

#include "handoff/SelectionFile.h"

#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QFile>
#include <QStringDecoder>

/// Without a documents folder the path is "(null)/KV.txt", in the working directory.
QString selectionFilePath() {
    return stringWithFormat(u"%@/KV.txt", {documentsDirectory()});
}

void writeToTextFile(const QString& line) {
    systemLog(u"Going to Write %@", {line});
    tDebugPrint("Writing to Text File\n");
    if (documentsDirectory().isNull()) {
        systemLog(u"writeToTextFile failed");
        tDebugPrint("writeToTextFile failed\n");
        return;
    }
    systemLog(u"writeToTextFile");
    tDebugPrint("writeToTextFile %s\n", UTF8String(line).constData());
    const QByteArray bytes = line.toUtf8();
    QFile file(selectionFilePath());
    // Unless all is ASCII, bytes and characters differ. A failed write is ignored: the installation
    // continues, and its later steps detect the missing line.
    if (!line.isNull() && QLatin1String(bytes) == line && file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
    }
    file.close();
    systemLog(u"writeToTextFile end");
    tDebugPrint("writeToTextFile END\n");
}

void RemoveFile() {
    tDebugPrint("Inside RemoveFile\n");
    const FileError error = removeItemAtPath(selectionFilePath());
    // After a successful removal the description is null and logged as "(null)"; only a missing file is not
    // logged.
    if (error.code != FileError::noSuchFile) {
        systemLog(u"%@", {error.description});
    }
    tDebugPrint("Return from RemoveFile\n");
}

QString GetFileData(const QString& path) {
    QFile file(path);
    if (!file.exists()) {
        return QStringLiteral("");
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    // Stateless, so that an incomplete character at the end is an error.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = QStringLiteral("") + decoder(file.readAll());  // Not null.
    return file.error() != QFileDevice::NoError || decoder.hasError() ? QString() : text;
}

#include "handoff/SelectionFile.h"

#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QFile>
#include <QStringDecoder>

namespace {

/// Overwrites the file in place, unless the text is null or not ASCII. A failed write is ignored: the
/// installation continues, and its later steps detect the missing line.
void writeAsciiToFile(const QString& text, const QString& path) {
    const QByteArray bytes = text.toUtf8();
    QFile file(path);
    // Unless all is ASCII, bytes and characters differ.
    if (!text.isNull() && QLatin1String(bytes) == text && file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
    }
}

}  // namespace

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
    writeAsciiToFile(line, selectionFilePath());
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

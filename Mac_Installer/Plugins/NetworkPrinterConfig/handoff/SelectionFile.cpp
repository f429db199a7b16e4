#include "handoff/SelectionFile.h"

#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

namespace {

/// Without a documents folder the path is relative to the working directory: "(null)/KV.txt".
QString selectionFileIn(const QString& directory) {
    return stringWithFormat(u"%@/KV.txt", {directory});
}

}  // namespace

void writeToTextFile(const QString& line) {
    systemLog(u"Going to Write %@", {line});
    tDebugPrint("Writing to Text File\n");
    const QString directory = documentsDirectory();
    if (directory.isNull()) {
        systemLog(u"writeToTextFile failed");
        tDebugPrint("writeToTextFile failed\n");
        return;
    }
    systemLog(u"writeToTextFile");
    tDebugPrint("writeToTextFile %s\n", UTF8String(line).c_str());
    // A failed write is ignored: the installation continues, and its later steps detect the missing line.
    writeAsciiToFile(line, selectionFileIn(directory));
    systemLog(u"writeToTextFile end");
    tDebugPrint("writeToTextFile END\n");
}

void RemoveFile() {
    tDebugPrint("Inside RemoveFile\n");
    const FileError error = removeItemAtPath(selectionFileIn(documentsDirectory()));
    // After a successful removal the description is null and logged as "(null)"; only a missing file is not
    // logged.
    if (error.code != FileError::noSuchFile) {
        systemLog(u"%@", {error.description});
    }
    tDebugPrint("Return from RemoveFile\n");
}

QString GetFileData(const QString& path) {
    if (!fileExistsAtPath(path)) {
        return QStringLiteral("");
    }
    return stringWithContentsOfFile(path);
}

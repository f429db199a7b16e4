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
    // A failed write is not told apart: the installation goes on, and its later steps notice the missing
    // line.
    writeAsciiToFile(line, selectionFileIn(directory));
    systemLog(u"writeToTextFile end");
    tDebugPrint("writeToTextFile END\n");
}

void RemoveFile() {
    tDebugPrint("Inside RemoveFile\n");
    const FileError error = removeItemAtPath(selectionFileIn(documentsDirectory()));
    // A removal that succeeded has a null description and leaves the line "(null)": only a file that was not
    // there stays silent.
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

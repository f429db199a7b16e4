// The exact bytes of the diagnostic log and the hand-off file, in working and in broken folders. A process
// starts its log only once, so each case of it runs in a child process.

#include "handoff/DiagnosticLog.h"
#include "handoff/SelectionFile.h"
#include "platform/DocumentsFolder.h"
#include "platform/StringFormat.h"
#include "support/Fixtures.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

QString documents;              // Returned by documentsDirectory().
bool isRemovedByOther = false;  // Another process removes each file first.

/// Runs shell commands in the home folder.
void shell(const QByteArray& commands) {
    if (std::system("cd; " + commands) != 0) {
        qFatal("failed: %s", commands.constData());
    }
}

}  // namespace

// Replaces the program's own, which never returns null in a test.
QString documentsDirectory() {
    return documents;
}

/// Replaces the C library's, which std::filesystem calls.
extern "C" [[gnu::visibility("default")]] int remove(const char* path) noexcept {
    if (isRemovedByOther) {
        ::unlink(path);
    }
    const int result = ::unlink(path);
    return result < 0 && errno == EISDIR ? ::rmdir(path) : result;
}

class TestHandoff : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        documents = home_.documents();
        QFile::remove(file_);
    }

    /// Writes two records over an old log: "A" without a newline, and one with arguments.
    void writesRecords() {
        const QByteArray a = QUAZEL_BUILD_DATE "\tA";
        const QByteArray b = QUAZEL_BUILD_DATE "\t100%s \xc3\xbc 7\n";
        struct {
            QByteArray before, between;  // Shell commands.
            QByteArray logs;             // Diagnostic log and system log.
        } const cases[]{
            {"true", "true", a + b},
            {"mount --bind Documents/QzInstall.log Documents/QzInstall.log", "true",
             "old\n" + a + b + "NSFileNoSuchFileError Error Code=512 \"Device or resource busy\" PATH"},
            {"mount --bind Documents Documents; mount -o remount,bind,ro Documents", "true",
             "old\nNSFileNoSuchFileError Error Code=642 \"Read-only file system\" PATH"},
            {"mount -t tmpfs -o size=64k none Documents; head -c 64k /dev/zero >Documents/full",
             "rm Documents/full", b},
            {"rm -r Documents", "mkdir Documents", b},
        };
        for (const auto& [before, between, logs] : cases) {
            writeFile(home_.log(), "old\n");
            const QString result = home_.path() + u"/result"_s;
            if (::fork() == 0) {
                ::unshare(CLONE_NEWNS);  // Its mounts end with it.
                SystemLogCapture capture;
                shell(before);
                tDebugPrint("A");
                shell(between);
                tDebugPrint("%s %d\n", "100%s \xc3\xbc", 7);
                writeFile(result, contentOf(home_.log()) + capture.take().join(u'|').toUtf8());
                ::_exit(0);
            }
            ::wait(nullptr);
            QCOMPARE(contentOf(result).replace(home_.log().toUtf8(), "PATH"), logs);
        }
    }

    void writesAndRemoves() {
        const QString line = u"KV210 10.0.0.1"_s;
        for (const auto& [before, content] : {std::pair("echo longer than the line >KV.txt", line),
                                              {"true", line},
                                              {"ln -s elsewhere KV.txt", line},
                                              {"mkdir -p KV.txt/full", u"(null)"_s}}) {
            shell(QByteArray("cd Documents; ") + before);
            writeToTextFile(line);
            QCOMPARE(stringWithFormat(u"%@", {GetFileData(file_)}), content);
            QCOMPARE(removed(), u"(null)"_s);
        }
        QCOMPARE(stringWithFormat(u"%@", {GetFileData(file_)}), u""_s);
        QCOMPARE(GetFileData(documents + u"/elsewhere"_s), line);  // Only writing follows a link.
        QCOMPARE(removed(), u""_s);
        writeFile(file_, "");
        isRemovedByOther = true;
        QCOMPARE(removed(), u""_s);
        isRemovedByOther = false;
        documents = QString(256, u'y');
        QCOMPARE(removed().remove(u'y'), u"Error Code=512 \"File name too long\" /KV.txt"_s);
    }

    void writesOnlyAscii() {
        writeFile(file_, "old\xc3");
        writeToTextFile(u"KV210 ١٩٢"_s);
        writeToTextFile(QChar(0xD800));  // Not a character; converters write "?".
        SystemLogCapture systemLog;
        writeToTextFile(QString());
        QCOMPARE(systemLog.take().join(u'|'), u"Going to Write (null)|writeToTextFile|writeToTextFile end"_s);
        QCOMPARE(contentOf(file_), "old\xc3");
        QVERIFY(GetFileData(file_).isNull());  // Half a character.
    }

    void worksWithoutADocumentsFolder() {
        documents = QString();
        (void)takeLog(home_);
        SystemLogCapture systemLog;
        writeToTextFile(u"KV210 10.0.0.1"_s);
        QCOMPARE(takeLog(home_).join(u'|'), u"Writing to Text File|writeToTextFile failed"_s);
        QCOMPARE(systemLog.take().join(u'|'), u"Going to Write KV210 10.0.0.1|writeToTextFile failed"_s);
        QVERIFY(QDir::setCurrent(home_.path()) && QDir().mkpath(u"(null)/KV.txt"_s));
        QCOMPARE(removed(), u"(null)"_s);
    }

  private:
    /// What removing the hand-off file writes to the system log.
    [[nodiscard]] QString removed() const {
        SystemLogCapture systemLog;
        RemoveFile();
        return systemLog.take().join(u'|') + (QFileInfo::exists(file_) ? u" left"_s : u""_s);
    }

    TemporaryHome home_;
    const QString file_ = home_.selectionFile();
};

QUAZEL_TEST_MAIN(TestHandoff, QCoreApplication)

#include "test_Handoff.moc"

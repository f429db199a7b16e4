// The diagnostic log and the hand-off file byte for byte, on folders that are in order and on folders that
// are not. The log begins once a process, so each case of it runs in a child of its own.

#include "BuildDate.h"
#include "handoff/DiagnosticLog.h"
#include "handoff/SelectionFile.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QDir>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

QString documents;  // What documentsDirectory() answers.

/// Runs commands of the shell in the home folder.
void shell(const QByteArray& commands) {
    if (std::system("cd; " + commands) != 0) {
        qFatal("failed: %s", commands.constData());
    }
}

}  // namespace

// In place of the program's own, which has no null folder to give.
QString documentsDirectory() {
    return documents;
}

class TestHandoff : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        documents = home_.documents();
        QFile::remove(file_);
    }

    /// There is an old log, and two records are written: "A" without a line end, and one with arguments.
    void records_data() {
        QTest::addColumn<QByteArray>("before");  // Commands of the shell.
        QTest::addColumn<QByteArray>("between");
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QString>("systemLog");
        const auto row = [](const char* name, const QByteArray& before, const QByteArray& between,
                            const QByteArray& log, const QString& systemLog = u""_s) {
            QTest::newRow(name) << before << between << log << systemLog;
        };
        const QByteArray a = QUAZEL_BUILD_DATE "\tA";
        const QByteArray b = QUAZEL_BUILD_DATE "\t100%s \xc3\xbc 7\n";
        const QString error = u"NSFileNoSuchFileError Error Code=%1 PATH"_s;
        row("an old log goes", "true", "true", a + b);
        row("an old log that stays is continued",
            "mount --bind Documents/QzInstall.log Documents/QzInstall.log", "true", "old\n" + a + b,
            error.arg(u"512 \"Device or resource busy\""_s));
        row("read-only folder", "mount --bind Documents Documents; mount -o remount,bind,ro Documents",
            "true", "old\n", error.arg(u"642 \"Read-only file system\""_s));
        row("full disk, until there is room",
            "mount -t tmpfs -o size=64k none Documents; head -c 64k /dev/zero >Documents/rest",
            "rm Documents/rest", b);
        row("no folder, until there is one", "rm -r Documents", "mkdir Documents", b);
    }
    void records() {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, between);
        const QString log = home_.log();
        writeFile(log, "old\n");
        const QString result = home_.path() + u"/result"_s;
        QFile::remove(result);
        SystemLogCapture capture;
        if (::fork() == 0) {
            ::unshare(CLONE_NEWNS);  // What it mounts goes with it.
            shell(before);
            tDebugPrint("A");
            shell(between);
            tDebugPrint("%s %d\n", "100%s \xc3\xbc", 7);
            writeFile(result, contentOf(log));
            ::_exit(0);
        }
        int status = -1;
        QVERIFY(::wait(&status) > 0 && status == 0);
        QTEST(contentOf(result), "log");
        QTEST(capture.take().join(u'|').replace(log, u"PATH"_s), "systemLog");
    }

    void keepsEarlierLogsOfOneSecond() {
        for (const QByteArray content : {"a", "b", "c"}) {
            shell("printf " + content +
                  " >Documents/QzInstall.log; touch -d '2023-11-04 08:05' Documents/QzInstall.log");
            keepEarlierLog();
            keepEarlierLog();  // There is none.
        }
        const QString kept = documents + u"/QzInstall-2023-11-04-080500%1.log"_s;
        QCOMPARE(contentOf(kept.arg(u""_s)) + contentOf(kept.arg(u"-2"_s)) + contentOf(kept.arg(u"-3"_s)),
                 "abc");
    }

    void writesAndRemoves() {
        const QByteArray line = "KV210 10.0.0.1";
        for (const auto& [before, content] : {std::pair("echo longer than the line >KV.txt", line),
                                              {"true", line},
                                              {"ln -s elsewhere KV.txt", line},
                                              {"mkdir -p KV.txt/full", QByteArray()}}) {
            shell(QByteArray("cd Documents; ") + before);
            writeToTextFile(QString::fromLatin1(line));
            QCOMPARE(contentOf(file_), content);
            QCOMPARE(removed(), u"(null)"_s);
        }
        QCOMPARE(contentOf(documents + u"/elsewhere"_s), line);  // A link is followed, but removed itself.
        QCOMPARE(removed(), u""_s);
        documents = QString(256, u'y');
        QCOMPARE(removed().remove(u'y'), u"Error Code=512 \"File name too long\" /KV.txt"_s);
    }

    void writesNothingButAscii() {
        writeFile(file_, "old");
        writeToTextFile(u"KV210 ١٩٢"_s);
        SystemLogCapture systemLog;
        writeToTextFile(QString());
        QCOMPARE(systemLog.take().join(u'|'), u"Going to Write (null)|writeToTextFile|writeToTextFile end"_s);
        QCOMPARE(contentOf(file_), "old");
    }

    void outlivesAMissingFolder() {
        documents = QString();
        (void)takeLog(home_);
        SystemLogCapture systemLog;
        writeToTextFile(u"KV210 10.0.0.1"_s);
        QCOMPARE(takeLog(home_).join(u'|'), u"Writing to Text File|writeToTextFile failed"_s);
        QCOMPARE(systemLog.take().join(u'|'), u"Going to Write KV210 10.0.0.1|writeToTextFile failed"_s);
        QVERIFY(QDir::setCurrent(home_.path()) && QDir().mkpath(u"(null)/KV.txt"_s));
        QCOMPARE(removed(), u"(null)"_s);
    }

    /// Two remove each file at the same time: one of them has removed it.
    void reportsOnlyItsOwnRemovals() {
        std::atomic<int> removals = 0;
        const auto remove = [&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                removals += removeItemAtPath(file_).code == FileError::none ? 1 : 0;
            }
        };
        int created = 0;
        {
            const std::jthread one(remove);
            const std::jthread other(remove);
            for (const QByteArray file = file_.toUtf8(); created < 500;) {
                created += ::close(::open(file, O_CREAT | O_EXCL, 0600)) == 0 ? 1 : 0;
            }
        }
        QCOMPARE(removals + (QFile::remove(file_) ? 1 : 0), created);
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

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

#include <QDateTime>
#include <QDir>
#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

using Step = std::function<void()>;

QString documents;  // What documentsDirectory() answers.

QString logPath() {
    return documents + u"/QzInstall.log"_s;
}

void mountAt(const QString& path, const char* type, unsigned long flags, const char* options = nullptr) {
    const QByteArray target = path.toUtf8();
    ::mount(target, target, type, flags, options);
}

}  // namespace

// In place of the program's own, which has no null folder to give.
QString documentsDirectory() {
    return documents;
}

class TestHandoff : public QObject {
    Q_OBJECT

  private slots:
    void init() { documents = home_.documents(); }

    /// There is an old log, and two records are written: "A" without a line end, and one with arguments.
    void records_data() {
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("between");
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QString>("systemLog");
        const Step none = [] {};
        const Step pinLog = [] { mountAt(logPath(), nullptr, MS_BIND); };
        const Step removeFolder = [] { QDir(documents).removeRecursively(); };
        const Step makeFolder = [] { QDir().mkpath(documents); };
        const Step makeReadOnly = [] {
            mountAt(documents, "tmpfs", 0);
            writeFile(logPath(), "old\n");
            mountAt(documents, nullptr, MS_REMOUNT | MS_RDONLY);
        };
        const Step fillDisk = [] {
            mountAt(documents, "tmpfs", 0, "size=64k");
            QFile file(documents + u"/rest"_s);
            file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
            file.write(QByteArray(100'000, 'x'));
        };
        const Step makeRoom = [] { QFile::remove(documents + u"/rest"_s); };
        const QByteArray a = QUAZEL_BUILD_DATE "\tA";
        const QByteArray b = QUAZEL_BUILD_DATE "\t100%s \xc3\xbc 7\n";
        const QString no;
        const QString error = u"NSFileNoSuchFileError Error Code=%1 PATH"_s;
        const QString busy = error.arg(u"512 \"Device or resource busy\""_s);
        const QString readOnly = error.arg(u"642 \"Read-only file system\""_s);
        QTest::newRow("an old log goes") << none << none << a + b << no;
        QTest::newRow("an old log that stays is continued") << pinLog << none << "old\n" + a + b << busy;
        QTest::newRow("read-only folder") << makeReadOnly << none << QByteArray("old\n") << readOnly;
        QTest::newRow("full disk, until there is room") << fillDisk << makeRoom << b << no;
        QTest::newRow("no folder, until there is one") << removeFolder << makeFolder << b << no;
    }
    void records() {
        QFETCH(Step, before);
        QFETCH(Step, between);
        writeFile(logPath(), "old\n");
        const QString result = home_.path() + u"/result"_s;
        QFile::remove(result);
        SystemLogCapture capture;
        const pid_t child = ::fork();
        if (child == 0 && ::unshare(CLONE_NEWNS) == 0) {  // What it mounts goes with it.
            before();
            tDebugPrint("A");
            between();
            tDebugPrint("%s %d\n", "100%s \xc3\xbc", 7);
            writeFile(result, contentOf(logPath()));
        }
        if (child == 0) {
            ::_exit(0);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        QVERIFY(status == 0 && QFile::exists(result));
        QTEST(contentOf(result), "log");
        QTEST(capture.take().join(u'|').replace(logPath(), u"PATH"_s), "systemLog");
    }

    void keepsEarlierLogsOfOneSecond() {
        documents = home_.path() + u"/logs"_s;
        QVERIFY(QDir().mkdir(documents));
        QStringList contents;
        for (const QByteArray content : {"a", "b", "c"}) {
            writeFile(logPath(), content);
            QFile log(logPath());
            QVERIFY(log.open(QIODevice::Append) &&
                    log.setFileTime(QDateTime({2023, 11, 4}, {8, 5}), QFileDevice::FileModificationTime));
            log.close();
            keepEarlierLog();
            keepEarlierLog();  // There is none.
        }
        for (const QString& name : QDir(documents).entryList(QDir::Files)) {
            contents += name + u"="_s + QString::fromUtf8(contentOf(documents + u"/"_s + name));
        }
        QCOMPARE(contents.join(u'|'),
                 u"QzInstall-2023-11-04-080500-2.log=b|"
                 u"QzInstall-2023-11-04-080500-3.log=c|"
                 "QzInstall-2023-11-04-080500.log=a"_s);
    }

    void writes() {
        SystemLogCapture systemLog;
        const auto contentAfter = [&](const QString& line) {
            writeToTextFile(line);
            return contentOf(file_);
        };
        QCOMPARE(contentAfter(u"KV460 192.168.100.200"_s), "KV460 192.168.100.200");
        QCOMPARE(contentAfter(u"KV210 192.168.1.10"_s),
                 "KV210 192.168.1.10");  // Shorter than the old one.
        QCOMPARE(contentAfter(u"KV210 ١٩٢"_s), "KV210 192.168.1.10");
        (void)systemLog.take();
        QCOMPARE(contentAfter(QString()), "KV210 192.168.1.10");
        QCOMPARE(systemLog.take().join(u'|'), u"Going to Write (null)|writeToTextFile|writeToTextFile end"_s);
        QVERIFY(QFile::remove(file_) && QFile::link(u"elsewhere"_s, file_));
        QCOMPARE(contentAfter(u"KV260 10.0.0.1"_s), "KV260 10.0.0.1");
        QVERIFY(QFileInfo(file_).isSymLink() && QFile::remove(file_) && QDir().mkpath(file_ + u"/full"_s));
        QCOMPARE(contentAfter(u"KV260 10.0.0.1"_s), QByteArray());
        documents = QString();
        (void)takeLog(home_);
        writeToTextFile(u"KV210 10.0.0.1"_s);
        QCOMPARE(takeLog(home_).join(u'|'), u"Writing to Text File|writeToTextFile failed"_s);
        QCOMPARE(systemLog.take().last(), u"writeToTextFile failed"_s);
    }

    /// Also a folder, a link to nowhere, and in no folder at all; a file that is not there is no error.
    void removes() {
        SystemLogCapture systemLog;
        const auto lines = [&] {
            RemoveFile();
            return systemLog.take().join(u'|').remove(u'y') + (QFileInfo::exists(file_) ? u" left"_s : u""_s);
        };
        QVERIFY(QDir().mkpath(file_ + u"/full"_s));
        QCOMPARE(lines(), u"(null)"_s);
        writeFile(file_, "KV460 192.168.100.200");
        QCOMPARE(lines(), u"(null)"_s);
        QVERIFY(QFile::link(u"elsewhere"_s, file_));
        QCOMPARE(lines(), u"(null)"_s);
        QCOMPARE(lines(), u""_s);
        documents = QString(256, u'y');
        QCOMPARE(lines(), u"Error Code=512 \"File name too long\" /KV.txt"_s);
        documents = QString();
        QVERIFY(QDir::setCurrent(home_.path()) && QDir().mkpath(u"(null)/KV.txt"_s));
        QCOMPARE(lines(), u"(null)"_s);
    }

    /// Somebody else removes the file at the same time: each removal is told by the one who made it.
    void reportsOnlyItsOwnRemovals() {
        const QByteArray file = (home_.path() + u"/shared"_s).toUtf8();
        std::atomic<int> created = 0;
        int removedThere = 0;
        std::jthread other([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                created += ::close(::open(file, O_CREAT | O_EXCL, 0600)) == 0 ? 1 : 0;
                removedThere += ::unlink(file) == 0 ? 1 : 0;
            }
        });
        int removedHere = 0;
        while (created < 5'000) {
            removedHere += removeItemAtPath(QString::fromUtf8(file)).code == FileError::none ? 1 : 0;
        }
        other.request_stop();
        other.join();
        QVERIFY(removedHere > 0);
        QCOMPARE(removedHere + removedThere, created.load());
    }

  private:
    TemporaryHome home_;
    const QString file_ = home_.selectionFile();
};

QUAZEL_TEST_MAIN(TestHandoff, QCoreApplication)

#include "test_Handoff.moc"

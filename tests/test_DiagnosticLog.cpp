// The diagnostic log byte for byte, on folders that are in order and on folders that are not. The log begins
// once a process, so each case runs in a child of its own.

#include "BuildDate.h"
#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QTest>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace {

using namespace Qt::StringLiterals;

using Step = std::function<void()>;

QString documents;  // What documentsDirectory() answers.

QString logPath() {
    return (documents.isNull() ? u"(null)"_s : documents) + u"/QzInstall.log"_s;
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

class TestDiagnosticLog : public QObject {
    Q_OBJECT

  private slots:
    /// There is an old log, and two records are written: "A" without a line end, and one with arguments.
    void records_data() {
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("between");
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QString>("systemLog");
        const Step none = [] {};
        const Step pinLog = [] { mountAt(logPath(), nullptr, MS_BIND); };
        const Step removeLog = [] { QFile::remove(logPath()); };
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
        const Step loseDocuments = [] {
            QDir::setCurrent(documents);
            QDir().mkdir(u"(null)"_s);
            documents = QString();
        };
        const QByteArray a = QUAZEL_BUILD_DATE "\tA";
        const QByteArray b = QUAZEL_BUILD_DATE "\t100%s \xc3\xbc 7\n";
        const QString no;
        const QString error = u"NSFileNoSuchFileError Error Code=%1 PATH"_s;
        const QString busy = error.arg(u"512 \"Device or resource busy\""_s);
        const QString readOnly = error.arg(u"642 \"Read-only file system\""_s);
        QTest::newRow("an old log goes") << none << none << a + b << no;
        QTest::newRow("deleted meanwhile") << none << removeLog << b << no;
        QTest::newRow("an old log that stays is continued") << pinLog << none << "old\n" + a + b << busy;
        QTest::newRow("read-only folder") << makeReadOnly << none << QByteArray("old\n") << readOnly;
        QTest::newRow("full disk, until there is room") << fillDisk << makeRoom << b << no;
        QTest::newRow("no folder yet") << removeFolder << makeFolder << b << no;
        QTest::newRow("folder removed meanwhile") << none << removeFolder << QByteArray() << no;
        QTest::newRow("no documents folder") << loseDocuments << none << a + b << no;
    }
    void records() {
        QFETCH(Step, before);
        QFETCH(Step, between);
        const TemporaryHome home;
        documents = home.documents();
        writeFile(logPath(), "old\n");
        const QString result = home.path() + u"/result"_s;
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
        const TemporaryHome home;
        documents = home.documents();
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
                 u"QzInstall-2023-11-04-080500-2.log=b|QzInstall-2023-11-04-080500-3.log=c|"
                 "QzInstall-2023-11-04-080500.log=a"_s);
    }
};

QUAZEL_TEST_MAIN(TestDiagnosticLog, QCoreApplication)

#include "test_DiagnosticLog.moc"

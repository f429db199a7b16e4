// The diagnostic log byte for byte, on folders that are in order and on folders that are not. The log begins
// once a process, so each case runs in a child of its own.

#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace {

using namespace Qt::StringLiterals;

QString documents;  // What documentsDirectory() answers.
const QByteArray date = QUAZEL_BUILD_DATE "\t";

using Step = std::function<void()>;

QString logPath() {
    return documents + u"/QzInstall.log"_s;
}

void writeOldLog() {
    writeFile(logPath(), "old\n");
}

void require(bool done) {
    if (!done) {
        qFatal("the case can't be set up");
    }
}

void mountSmallDisk(const char* options) {
    require(::mount("disk", qUtf8Printable(documents), "tmpfs", 0, options) == 0);
}

/// Fills what is left of the disk, so that not one byte more can be written.
void fillDisk() {
    QFile file(documents + u"/rest"_s);
    require(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (file.write(QByteArray(4096, 'x')) > 0) {
    }
}

int runInChild(const Step& step) {
    const pid_t child = ::fork();
    if (child == 0) {
        step();
        ::_exit(0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

}  // namespace

// In place of the program's own, which has no null folder to give.
QString documentsDirectory() {
    return documents;
}

class TestDiagnosticLog : public QObject {
    Q_OBJECT

  private slots:
    void records_data() {
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("run");
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QByteArray>("systemLog");  // Without the path at its end; null: no line.
        const Step nothing = [] {};
        const Step logA = [] { tDebugPrint("A\n"); };
        const Step logB = [] { tDebugPrint("B\n"); };
        const QByteArray recordA = date + "A\n";
        const QByteArray recordB = date + "B\n";
        const QByteArray none;

        const auto row = [](const char* name) -> QTestData& { return QTest::newRow(name); };
        const auto aThenB = [=](const Step& between) {
            return Step([=] {
                logA();
                between();
                logB();
            });
        };
        row("two records") << nothing << aThenB(nothing) << recordA + recordB << none;
        row("without a line end") << nothing << Step([] {
            tDebugPrint("A");
            tDebugPrint("%s %d\n", "100%s \xc3\xbc", 7);
        }) << date + "A" + date + "100%s \xc3\xbc 7\n"
                                  << none;
        row("an old log goes") << Step(writeOldLog) << logA << recordA << none;
        row("an old folder of that name goes")
            << Step([] { require(QDir().mkpath(logPath() + u"/full"_s)); }) << logA << recordA << none;
        row("deleted meanwhile") << nothing << aThenB([] { QFile::remove(logPath()); }) << recordB << none;
        row("an old log that can't be removed is continued")
            << Step([] {
                   writeOldLog();
                   const QByteArray path = logPath().toUtf8();
                   require(::mount(path, path, nullptr, MS_BIND, nullptr) == 0);
               })
            << logA << "old\n" + recordA
            << QByteArray("NSFileNoSuchFileError Error Code=512 \"Device or resource busy\" ");
        row("read-only folder") << Step([] {
            mountSmallDisk(nullptr);
            writeOldLog();
            require(::mount(nullptr, qUtf8Printable(documents), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) ==
                    0);
        }) << logA << QByteArray("old\n")
                                << QByteArray(
                                       "NSFileNoSuchFileError Error Code=642 \"Read-only file system\" ");
        row("full disk, until there is room") << Step([] {
            mountSmallDisk("size=64k");
            fillDisk();
        }) << aThenB([] { QFile::remove(documents + u"/rest"_s); })
                                              << recordB << none;
        row("no folder yet") << Step([] { QDir(documents).removeRecursively(); })
                             << aThenB([] { QDir().mkpath(documents); }) << recordB << none;
        row("folder removed meanwhile")
            << nothing << aThenB([] { QDir(documents).removeRecursively(); }) << none << none;
        row("no documents folder") << Step([] {
            require(QDir::setCurrent(documents) && QDir().mkdir(u"(null)"_s));
            documents = QString();
        }) << aThenB([] { documents = u"(null)"_s; })
                                   << recordA + recordB << none;
    }
    void records() {
        QFETCH(Step, before);
        QFETCH(Step, run);
        QFETCH(QByteArray, log);
        QFETCH(QByteArray, systemLog);
        const TemporaryHome home;
        documents = home.documents();
        const QString result = home.path() + u"/result"_s;
        SystemLogCapture capture;
        const int status = runInChild([&] {
            require(::unshare(CLONE_NEWNS) == 0);  // What it mounts goes with it.
            before();
            run();
            writeFile(result, contentOf(logPath()));
        });
        QCOMPARE(status, 0);
        QCOMPARE(contentOf(result), log);
        const QStringList lines =
            systemLog.isNull() ? QStringList() : QStringList(QString::fromUtf8(systemLog) + logPath());
        QCOMPARE(capture.take(), lines);
    }
};

QUAZEL_TEST_MAIN(TestDiagnosticLog, QCoreApplication)

#include "test_DiagnosticLog.moc"

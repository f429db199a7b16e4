// The hand-off file byte for byte, with the lines that each step leaves in both logs.

#include "handoff/SelectionFile.h"
#include "platform/DocumentsFolder.h"
#include "platform/FileManager.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

QString documents;  // What documentsDirectory() answers.

}  // namespace

// In place of the program's own, which has no null folder to give.
QString documentsDirectory() {
    return documents;
}

class TestSelectionFile : public QObject {
    Q_OBJECT

  private slots:
    void writes() {
        documents = home_.documents();
        SystemLogCapture systemLog;
        QStringList systemLines;
        QStringList records;
        const auto contentAfter = [&](const QString& line) {
            writeToTextFile(line);
            const QString shown = line.isNull() ? u"(null)"_s : line;
            systemLines << u"Going to Write "_s + shown << u"writeToTextFile"_s << u"writeToTextFile end"_s;
            records << u"Writing to Text File"_s << u"writeToTextFile "_s + shown << u"writeToTextFile END"_s;
            return contentOf(file_);
        };
        QCOMPARE(contentAfter(u"KV460 192.168.100.200"_s), "KV460 192.168.100.200");
        QCOMPARE(contentAfter(u"KV210 192.168.1.10"_s), "KV210 192.168.1.10");  // Shorter than the old one.
        QCOMPARE(contentAfter(u"KV210 ١٩٢"_s), "KV210 192.168.1.10");
        QCOMPARE(contentAfter(QString()), "KV210 192.168.1.10");
        QVERIFY(QFile::remove(file_) && QFile::link(u"elsewhere"_s, file_));
        QCOMPARE(contentAfter(u"KV260 10.0.0.1"_s), "KV260 10.0.0.1");
        QVERIFY(QFileInfo(file_).isSymLink() && QFile::remove(file_) && QDir().mkpath(file_ + u"/full"_s));
        QCOMPARE(contentAfter(u"KV260 10.0.0.1"_s), QByteArray());

        documents = QString();
        writeToTextFile(u"KV210 10.0.0.1"_s);
        systemLines << u"Going to Write KV210 10.0.0.1"_s << u"writeToTextFile failed"_s;
        records << u"Writing to Text File"_s << u"writeToTextFile failed"_s;
        QCOMPARE(systemLog.take(), systemLines);
        QCOMPARE(takeLog(home_), records);
    }

    void removes() {
        SystemLogCapture systemLog;
        const auto linesAndWhatIsLeft = [&](const QString& folder) {
            documents = folder;
            RemoveFile();
            return systemLog.take() + QDir(folder.isNull() ? u"(null)"_s : folder)
                                          .entryList({u"KV*"_s}, QDir::AllEntries | QDir::System);
        };
        const QStringList silence;
        const QStringList done{u"(null)"_s};
        QVERIFY(QDir(home_.documents()).removeRecursively());
        QCOMPARE(linesAndWhatIsLeft(home_.documents()), silence);
        QVERIFY(QDir().mkpath(file_ + u"/full"_s));
        QCOMPARE(linesAndWhatIsLeft(home_.documents()), done);
        writeFile(file_, "KV460 192.168.100.200");
        QCOMPARE(linesAndWhatIsLeft(home_.documents()), done);
        QVERIFY(QFile::link(u"elsewhere"_s, file_));
        QCOMPARE(linesAndWhatIsLeft(home_.documents()), done);
        QCOMPARE(linesAndWhatIsLeft(QString(256, u'y')).join(u'|').remove(u'y'),
                 u"Error Code=512 \"File name too long\" /KV.txt"_s);
        QVERIFY(QDir::setCurrent(home_.path()));
        QCOMPARE(linesAndWhatIsLeft(QString()), silence);
        QVERIFY(QDir().mkpath(u"(null)/KV.txt"_s));
        QCOMPARE(linesAndWhatIsLeft(QString()), done);
        // Six times, as the first had no folder for its log.
        QCOMPARE(takeLog(home_).join(u'|') + u'|',
                 u"Inside RemoveFile|Return from RemoveFile|"_s.repeated(6));
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

    void reads() {
        const QString file = home_.path() + u"/Version"_s;
        QVERIFY(!GetFileData(file).isNull() && GetFileData(file).isEmpty());
        for (const QByteArray content : {"", "1.0.10.0\n", "\xc3\xbc"}) {
            writeFile(file, content);
            QVERIFY(!GetFileData(file).isNull());
            QCOMPARE(GetFileData(file), QString::fromUtf8(content));
        }
        for (const QByteArray content : {"1.0\xff", "1.0\xc3"}) {
            writeFile(file, content);
            QVERIFY2(GetFileData(file).isNull(), content);
        }
        QVERIFY(GetFileData(home_.path()).isNull() && GetFileData(u"/proc/self/mem"_s).isNull());
    }

  private:
    TemporaryHome home_;
    const QString file_ = home_.selectionFile();
};

QUAZEL_TEST_MAIN(TestSelectionFile, QCoreApplication)

#include "test_SelectionFile.moc"

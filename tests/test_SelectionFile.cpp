// The hand-off file byte for byte, with the lines that each step leaves in both logs.

#include "handoff/SelectionFile.h"
#include "platform/DocumentsFolder.h"
#include "support/Fixtures.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

#include <optional>

namespace {

using namespace Qt::StringLiterals;

QString documents;  // What documentsDirectory() answers.

enum class Before { Nothing, OldLine, Folder, LinkToNothing };

void prepare(Before before, const QString& path) {
    switch (before) {
        case Before::Nothing:
            break;
        case Before::OldLine:
            writeFile(path, "KV460 192.168.100.200");
            break;
        case Before::Folder:
            QVERIFY(QDir().mkpath(path + u"/full"_s));
            break;
        case Before::LinkToNothing:
            QVERIFY(QFile::link(u"elsewhere"_s, path));
            break;
    }
}

}  // namespace

// In place of the program's own, which has no null folder to give.
QString documentsDirectory() {
    return documents;
}

class TestSelectionFile : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { systemLog_.emplace(); }

    void init() {
        QDir(home_.documents()).removeRecursively();
        QDir().mkpath(home_.documents());
        documents = home_.documents();
    }

    void writes_data() {
        QTest::addColumn<Before>("before");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("content");
        const QString line = u"KV210 192.168.1.10"_s;
        const QByteArray old = "KV460 192.168.100.200";
        QTest::newRow("new") << Before::Nothing << line << QByteArray("KV210 192.168.1.10");
        QTest::newRow("shorter than the old") << Before::OldLine << line << QByteArray("KV210 192.168.1.10");
        QTest::newRow("not ASCII") << Before::OldLine << u"KV210 ١٩٢"_s << old;
        QTest::newRow("null") << Before::OldLine << QString() << old;
        QTest::newRow("a folder is there") << Before::Folder << line << QByteArray();
        QTest::newRow("through a link") << Before::LinkToNothing << line << QByteArray("KV210 192.168.1.10");
    }
    void writes() {
        QFETCH(Before, before);
        QFETCH(QString, line);
        prepare(before, home_.selectionFile());
        writeToTextFile(line);
        QTEST(contentOf(home_.selectionFile()), "content");
        const QString shown = line.isNull() ? u"(null)"_s : line;
        QCOMPARE(systemLog_->take(),
                 QStringList({u"Going to Write "_s + shown, u"writeToTextFile"_s, u"writeToTextFile end"_s}));
        QCOMPARE(takeLog(home_), QStringList({u"Writing to Text File"_s, u"writeToTextFile "_s + shown,
                                              u"writeToTextFile END"_s}));
    }

    void givesUpWithoutDocumentsFolder() {
        documents = QString();
        writeToTextFile(u"KV210 10.0.0.1"_s);
        QCOMPARE(systemLog_->take(),
                 QStringList({u"Going to Write KV210 10.0.0.1"_s, u"writeToTextFile failed"_s}));
        QCOMPARE(takeLog(home_), QStringList({u"Writing to Text File"_s, u"writeToTextFile failed"_s}));
    }

    void removes_data() {
        QTest::addColumn<Before>("before");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("systemLine");  // Null: no line.
        const QString there = home_.documents();
        const QString tooLong(256, QLatin1Char('x'));
        QTest::newRow("present") << Before::OldLine << there << u"(null)"_s;
        QTest::newRow("a folder") << Before::Folder << there << u"(null)"_s;
        QTest::newRow("a dangling link") << Before::LinkToNothing << there << u"(null)"_s;
        QTest::newRow("absent") << Before::Nothing << there << QString();
        QTest::newRow("no documents folder") << Before::Nothing << QString() << QString();
        QTest::newRow("an error") << Before::Nothing << tooLong
                                  << u"Error Code=512 \"File name too long\" %1/KV.txt"_s.arg(tooLong);
    }
    void removes() {
        QFETCH(Before, before);
        QFETCH(QString, directory);
        QFETCH(QString, systemLine);
        prepare(before, home_.selectionFile());
        documents = directory;
        RemoveFile();
        QVERIFY(QDir(home_.documents()).entryList({u"KV*"_s}, QDir::AllEntries | QDir::System).isEmpty());
        QCOMPARE(systemLog_->take(), systemLine.isNull() ? QStringList() : QStringList(systemLine));
        QCOMPARE(takeLog(home_), QStringList({u"Inside RemoveFile"_s, u"Return from RemoveFile"_s}));
    }

    void removesRelativeToTheWorkingFolder() {
        documents = QString();
        QVERIFY(QDir::setCurrent(home_.path()) && QDir().mkpath(u"(null)/KV.txt"_s));
        RemoveFile();
        QVERIFY(!QDir(u"(null)/KV.txt"_s).exists());
        QCOMPARE(systemLog_->take(), QStringList(u"(null)"_s));
    }

    void reads_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("content");  // Null: the path is used as it is.
        QTest::addColumn<QString>("text");
        const QString file = home_.path() + u"/Version"_s;
        QTest::newRow("missing") << u"/nowhere/Version"_s << QByteArray() << u""_s;
        QTest::newRow("empty") << file << QByteArray("") << u""_s;
        QTest::newRow("line end kept") << file << QByteArray("1.0.10.0\n") << u"1.0.10.0\n"_s;
        QTest::newRow("UTF-8") << file << QByteArray("\xc3\xbc") << u"ü"_s;
        QTest::newRow("not UTF-8") << file << QByteArray("1.0\xff") << QString();
        QTest::newRow("cut UTF-8") << file << QByteArray("1.0\xc3") << QString();
        QTest::newRow("a folder") << home_.path() << QByteArray() << QString();
        QTest::newRow("read error") << u"/proc/self/mem"_s << QByteArray() << QString();
    }
    void reads() {
        QFETCH(QString, path);
        QFETCH(QByteArray, content);
        QFETCH(QString, text);
        if (!content.isNull()) {
            writeFile(path, content);
        }
        const QString found = GetFileData(path);
        QCOMPARE(found, text);
        QCOMPARE(found.isNull(), text.isNull());
    }

  private:
    TemporaryHome home_;
    std::optional<SystemLogCapture> systemLog_;
};

QUAZEL_TEST_MAIN(TestSelectionFile, QCoreApplication)

#include "test_SelectionFile.moc"

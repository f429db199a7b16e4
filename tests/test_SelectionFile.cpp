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
            QVERIFY(QDir().mkpath(path + QStringLiteral("/full")));
            break;
        case Before::LinkToNothing:
            QVERIFY(QFile::link(QStringLiteral("elsewhere"), path));
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
        const QString line = QStringLiteral("KV210 192.168.1.10");
        const QByteArray old = "KV460 192.168.100.200";
        QTest::newRow("new") << Before::Nothing << line << QByteArray("KV210 192.168.1.10");
        QTest::newRow("shorter than the old") << Before::OldLine << line << QByteArray("KV210 192.168.1.10");
        QTest::newRow("not ASCII") << Before::OldLine << QStringLiteral(u"KV210 ١٩٢") << old;
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
        const QString shown = line.isNull() ? QStringLiteral("(null)") : line;
        QCOMPARE(systemLog_->take(),
                 QStringList({QStringLiteral("Going to Write ") + shown, QStringLiteral("writeToTextFile"),
                              QStringLiteral("writeToTextFile end")}));
        QCOMPARE(takeLog(home_), QStringList({QStringLiteral("Writing to Text File"),
                                              QStringLiteral("writeToTextFile ") + shown,
                                              QStringLiteral("writeToTextFile END")}));
    }

    void givesUpWithoutDocumentsFolder() {
        documents = QString();
        writeToTextFile(QStringLiteral("KV210 10.0.0.1"));
        QCOMPARE(systemLog_->take(), QStringList({QStringLiteral("Going to Write KV210 10.0.0.1"),
                                                  QStringLiteral("writeToTextFile failed")}));
        QCOMPARE(takeLog(home_), QStringList({QStringLiteral("Writing to Text File"),
                                              QStringLiteral("writeToTextFile failed")}));
    }

    void removes_data() {
        QTest::addColumn<Before>("before");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("systemLine");  // Null: no line.
        const QString there = home_.documents();
        const QString tooLong(256, QLatin1Char('x'));
        QTest::newRow("present") << Before::OldLine << there << QStringLiteral("(null)");
        QTest::newRow("a folder") << Before::Folder << there << QStringLiteral("(null)");
        QTest::newRow("a dangling link") << Before::LinkToNothing << there << QStringLiteral("(null)");
        QTest::newRow("absent") << Before::Nothing << there << QString();
        QTest::newRow("no documents folder") << Before::Nothing << QString() << QString();
        QTest::newRow("an error")
            << Before::Nothing << tooLong
            << QStringLiteral("Error Code=512 \"File name too long\" %1/KV.txt").arg(tooLong);
    }
    void removes() {
        QFETCH(Before, before);
        QFETCH(QString, directory);
        QFETCH(QString, systemLine);
        prepare(before, home_.selectionFile());
        documents = directory;
        RemoveFile();
        QVERIFY(QDir(home_.documents())
                    .entryList({QStringLiteral("KV*")}, QDir::AllEntries | QDir::System)
                    .isEmpty());
        QCOMPARE(systemLog_->take(), systemLine.isNull() ? QStringList() : QStringList(systemLine));
        QCOMPARE(takeLog(home_), QStringList({QStringLiteral("Inside RemoveFile"),
                                              QStringLiteral("Return from RemoveFile")}));
    }

    void removesRelativeToTheWorkingFolder() {
        documents = QString();
        QVERIFY(QDir::setCurrent(home_.path()) && QDir().mkpath(QStringLiteral("(null)/KV.txt")));
        RemoveFile();
        QVERIFY(!QDir(QStringLiteral("(null)/KV.txt")).exists());
        QCOMPARE(systemLog_->take(), QStringList(QStringLiteral("(null)")));
    }

    void reads_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("content");  // Null: the path is used as it is.
        QTest::addColumn<QString>("text");
        const QString file = home_.path() + QStringLiteral("/Version");
        QTest::newRow("missing") << QStringLiteral("/nowhere/Version") << QByteArray() << QStringLiteral("");
        QTest::newRow("empty") << file << QByteArray("") << QStringLiteral("");
        QTest::newRow("line end kept") << file << QByteArray("1.0.10.0\n") << QStringLiteral("1.0.10.0\n");
        QTest::newRow("UTF-8") << file << QByteArray("\xc3\xbc") << QStringLiteral(u"ü");
        QTest::newRow("not UTF-8") << file << QByteArray("1.0\xff") << QString();
        QTest::newRow("cut UTF-8") << file << QByteArray("1.0\xc3") << QString();
        QTest::newRow("a folder") << home_.path() << QByteArray() << QString();
        QTest::newRow("read error") << QStringLiteral("/proc/self/mem") << QByteArray() << QString();
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

// The program from outside: which files it takes for pages, what it says, and with which status it ends.

#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void start(QProcess& installer, const QStringList& arguments, const QString& home = QDir::homePath()) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"HOME"_s, home);
    installer.setProcessEnvironment(environment);
    installer.start(programPath(u"quazel-installer"_s), arguments);
}

}  // namespace

class TestPluginLoader : public QObject {
    Q_OBJECT

  private slots:
    void ends_data() {
        QTest::addColumn<QString>("file");  // what lies in the folder of plug-ins, %1, as page.so
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        const QString plugins = QStringLiteral(QUAZEL_TEST_PLUGINS "/plugin_");
        const QStringList folder{u"--plugins"_s, u"%1"_s};
        const auto row = [](const QString& text, int status, const QStringList& arguments,
                            const QString& file = {}) {
            QTest::newRow(qPrintable(text)) << file << arguments << status << text;
        };
        row(u"quazel-installer 1."_s, 0, {u"-v"_s});
        row(u"colour"_s, 2, {u"--colour"_s});
        row(u"see --help"_s, 2, {u"now"_s});
        row(u"no usable plug-in in %1"_s, 1, folder);
        row(u"%1/missing: is not a readable folder"_s, 1, {u"--plugins"_s, u"%1/missing"_s});
        row(u"page.so: is not a plug-in"_s, 1, folder, sourcePath(u"README.md"_s));
        row(u"page.so: is made for \"org.example.Other\""_s, 1, folder, plugins + u"foreign.so"_s);
        row(u"page.so: is made for \"com.tovik.quazel.InstallerPluginFactory/2.0\""_s, 1, folder,
            plugins + u"newer.so"_s);
        row(u"page.so: did not create a page"_s, 1, folder, plugins + u"user.so"_s);
    }
    void ends() {
        QFETCH(QString, file);
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, text);
        const QTemporaryDir folder;
        QVERIFY(file.isNull() || QFile::copy(file, folder.filePath(u"page.so"_s)));
        QProcess installer;
        installer.setProcessChannelMode(QProcess::MergedChannels);
        start(installer, arguments.replaceInStrings(u"%1"_s, folder.path()));
        QVERIFY(installer.waitForFinished(10000) && installer.exitStatus() == QProcess::NormalExit);
        QCOMPARE(installer.exitCode(), status);
        const QString said = QString::fromUtf8(installer.readAll());
        QVERIFY2(said.contains(text.replace(u"%1"_s, folder.path())), qPrintable(said));
        QCOMPARE(said.contains(u"plug-in was run"_s), file.endsWith(u"user.so"_s));
    }

    void saysThatThereIsNoDocumentsFolder() {
        const QTemporaryDir home;
        const QString file = home.filePath(u"file"_s);
        writeFile(file, "no folder can be made in this");
        QProcess installer;
        start(installer, {}, file);
        const QString complaint = u"The folder %1/Documents can't be written to"_s.arg(file);
        QByteArray said;
        QTRY_VERIFY((said += installer.readAllStandardError()).contains(complaint.toUtf8()));
        installer.terminate();
        QVERIFY(installer.waitForFinished(10000));
        QCOMPARE(installer.exitCode(), 0);
    }
};

QUAZEL_TEST_MAIN(TestPluginLoader, QCoreApplication)

#include "test_PluginLoader.moc"

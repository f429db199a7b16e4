// The program from outside: which files it takes for pages, what it says, and with which status it ends.

#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A run of quazel-installer that is watched from outside.
class Installer : public QProcess {
  public:
    explicit Installer(const QStringList& arguments, const QString& home = QDir::homePath(),
                       const QString& platform = u"offscreen"_s) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        environment.insert(u"HOME"_s, home);
        setProcessEnvironment(environment);
        start(programPath(u"quazel-installer"_s), arguments);
    }

    /// Exit status, or -1 for any other end.
    [[nodiscard]] int status() {
        return waitForFinished(10000) && exitStatus() == QProcess::NormalExit ? exitCode() : -1;
    }
};

}  // namespace

class TestPluginLoader : public QObject {
    Q_OBJECT

  private slots:
    void ends_data() {
        QTest::addColumn<QString>("file");  // what lies in the folder of plug-ins, %1, as page.so
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        const QString none;
        const QString plugins = QStringLiteral(QUAZEL_TEST_PLUGINS "/plugin_");
        const QStringList folder{u"--plugins"_s, u"%1"_s};
        QTest::newRow("help") << none << QStringList{u"--help"_s} << 0 << u"--plugins"_s;
        QTest::newRow("version") << none << QStringList{u"-v"_s} << 0 << u"quazel-installer 1."_s;
        QTest::newRow("unknown option") << none << QStringList{u"--colour"_s} << 2 << u"colour"_s;
        QTest::newRow("option without its value") << none << QStringList{u"--plugins"_s} << 2 << u"plugins"_s;
        QTest::newRow("one argument too many") << none << QStringList{u"now"_s} << 2 << u"see --help"_s;
        QTest::newRow("nothing") << none << folder << 1 << u"no usable plug-in in %1"_s;
        QTest::newRow("no folder") << none << QStringList{u"--plugins"_s, u"%1/missing"_s} << 1
                                   << u"%1/missing: is no folder that can be read"_s;
        QTest::newRow("a text file") << sourcePath(u"README.md"_s) << folder << 1
                                     << u"%1/page.so: is not a plug-in"_s;
        QTest::newRow("of another program")
            << plugins + u"foreign.so"_s << folder << 1 << u"%1/page.so: is made for \"org.example.Other\""_s;
        QTest::newRow("of another version of the contract")
            << plugins + u"newer.so"_s << folder << 1
            << u"%1/page.so: is made for \"com.tovik.quazel.InstallerPluginFactory/2.0\""_s;
        QTest::newRow("without a page")
            << plugins + u"empty.so"_s << folder << 1 << u"%1/page.so: made no page"_s;
    }
    void ends() {
        QFETCH(QString, file);
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, text);
        const QTemporaryDir folder;
        QVERIFY(file.isNull() || QFile::copy(file, folder.filePath(u"page.so"_s)));
        arguments.replaceInStrings(u"%1"_s, folder.path());
        // Who asks for help need not have a display.
        Installer installer(arguments, QDir::homePath(), status == 0 ? u"none"_s : u"offscreen"_s);
        QCOMPARE(installer.status(), status);
        installer.setReadChannel(status == 0 ? QProcess::StandardOutput : QProcess::StandardError);
        const QString said = QString::fromUtf8(installer.readAll());
        QVERIFY2(said.contains(text.replace(u"%1"_s, folder.path())), qPrintable(said));
        QCOMPARE(said.contains(u"there is no page to show"_s), status == 1);
        QCOMPARE(said.contains(u"plug-in was run"_s), file.endsWith(u"empty.so"_s));
    }

    void preparesTheDocumentsFolder() {
        const QTemporaryDir home;
        Installer installer({}, home.path());
        QTRY_VERIFY(QFile::exists(home.filePath(u"Documents/QzInstall.log"_s)));
        installer.terminate();
        QCOMPARE(installer.status(), 0);

        const QString file = home.filePath(u"file"_s);
        writeFile(file, "no folder can be made in this");
        Installer hindered({}, file);
        const QString complaint = u"The folder %1/Documents can't be written to"_s.arg(file);
        QByteArray said;
        QTRY_VERIFY((said += hindered.readAllStandardError()).contains(complaint.toUtf8()));
        hindered.terminate();
        QCOMPARE(hindered.status(), 0);
    }
};

QUAZEL_TEST_MAIN(TestPluginLoader, QCoreApplication)

#include "test_PluginLoader.moc"

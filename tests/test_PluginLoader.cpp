// The program from outside: which files it takes for pages, what it says, and with which status it ends.

#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A run of quazel-installer that is watched from outside.
class Installer {
  public:
    explicit Installer(const QStringList& arguments, const QString& home = QString(),
                       const QString& platform = u"offscreen"_s) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        if (!home.isNull()) {
            environment.insert(u"HOME"_s, home);
        }
        process_.setProcessEnvironment(environment);
        process_.start(programPath(u"quazel-installer"_s), arguments);
    }

    void terminate() { process_.terminate(); }
    /// Exit status, or -1 for any other end.
    [[nodiscard]] int status() {
        const bool ended = process_.waitForFinished(10000) && process_.exitStatus() == QProcess::NormalExit;
        return ended ? process_.exitCode() : -1;
    }
    [[nodiscard]] QString output() { return QString::fromUtf8(process_.readAllStandardOutput()); }
    [[nodiscard]] QString complaint() { return QString::fromUtf8(process_.readAllStandardError()); }
    /// What it complains until it is silent with the window open.
    [[nodiscard]] bool complains(const QString& text) {
        return QTest::qWaitFor([&] { return (said_ += complaint()).contains(text); });
    }

  private:
    QProcess process_;
    QString said_;
};

}  // namespace

class TestPluginLoader : public QObject {
    Q_OBJECT

  private slots:
    void refusesWhatIsNoPage_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("complaint");
        QTest::newRow("nothing") << QString() << u"no usable plug-in in %1"_s;
        QTest::newRow("no folder") << u"missing"_s << u"%1: is no folder that can be read"_s;
        QTest::newRow("a text file") << u"text"_s << u"%1/page.so: is not a plug-in"_s;
        QTest::newRow("a plug-in of another program")
            << u"plugin_foreign.so"_s << u"%1/page.so: is made for \"org.example.Other\""_s;
        QTest::newRow("another version of the contract")
            << u"plugin_newer.so"_s
            << u"%1/page.so: is made for \"com.tovik.quazel.InstallerPluginFactory/2.0\""_s;
        QTest::newRow("a plug-in without a page") << u"plugin_empty.so"_s << u"%1/page.so: made no page"_s;
    }
    void refusesWhatIsNoPage() {
        QFETCH(QString, file);
        QFETCH(QString, complaint);
        const QTemporaryDir folder;
        QString plugins = folder.path();
        if (file == u"text"_s) {
            writeFile(plugins + u"/page.so"_s, "not a library");
        } else if (file == u"missing"_s) {
            plugins += u"/missing"_s;
        } else if (!file.isNull()) {
            QVERIFY(QFile::copy(QStringLiteral(QUAZEL_TEST_PLUGINS "/") + file, plugins + u"/page.so"_s));
        }
        Installer installer({u"--plugins"_s, plugins});
        QCOMPARE(installer.status(), 1);
        const QString said = installer.complaint();
        QVERIFY2(said.contains(complaint.arg(plugins)), qPrintable(said));
        QVERIFY2(said.contains(u"there is no page to show"_s), qPrintable(said));
        QCOMPARE(said.contains(u"plug-in was run"_s), file == u"plugin_empty.so"_s);
    }

    void answersOptions_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        QTest::newRow("help") << QStringList{u"--help"_s} << 0 << u"--plugins"_s;
        QTest::newRow("version") << QStringList{u"-v"_s} << 0 << u"quazel-installer 1."_s;
        QTest::newRow("unknown option") << QStringList{u"--colour"_s} << 2 << u"colour"_s;
        QTest::newRow("option without its value") << QStringList{u"--plugins"_s} << 2 << u"plugins"_s;
        QTest::newRow("one argument too many") << QStringList{u"now"_s} << 2 << u"see --help"_s;
    }
    void answersOptions() {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        // Who asks for help need not have a display.
        Installer installer(arguments, QString(), status == 0 ? u"none"_s : u"offscreen"_s);
        QCOMPARE(installer.status(), status);
        const QString said = status == 0 ? installer.output() : installer.complaint();
        QFETCH(QString, text);
        QVERIFY2(said.contains(text), qPrintable(said));
    }

    void preparesTheDocumentsFolder() {
        const QTemporaryDir home;
        Installer installer({}, home.path());
        QTRY_VERIFY(QFile::exists(home.filePath(u"Documents/QzInstall.log"_s)));
        installer.terminate();
        QCOMPARE(installer.status(), 0);

        writeFile(home.filePath(u"file"_s), "no folder can be made in this");
        Installer hindered({}, home.filePath(u"file"_s));
        QVERIFY(hindered.complains(
            u"The folder %1/Documents can't be written to"_s.arg(home.filePath(u"file"_s))));
        hindered.terminate();
        QCOMPARE(hindered.status(), 0);
    }
};

QUAZEL_TEST_MAIN(TestPluginLoader, QCoreApplication)

#include "test_PluginLoader.moc"

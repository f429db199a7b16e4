// quazel-installer: loads the pages and shows the window.

#include "Installer/HandOff.h"
#include "Installer/InstallationPane.h"
#include "Installer/InstallerRun.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/PluginLoader.h"
#include "Installer/SummaryPane.h"
#include "Installer/TerminationSignals.h"
#include "InstallerPlugins/ButtonActions.h"

#include <QApplication>
#include <QByteArrayList>
#include <QCommandLineParser>
#include <QDir>
#include <QMessageBox>

#include <syslog.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

/// Prints one line in a single call, so that lines of different threads don't interleave.
void printMessage(const QString& text) {
    std::fprintf(stderr, "quazel-installer: %s\n", qUtf8Printable(text));
}

/// Qt's message handler: forwards to syslog(3) and to standard error. Any thread.
void forwardMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    constexpr int priorities[]{LOG_DEBUG, LOG_WARNING, LOG_ERR, LOG_CRIT, LOG_INFO};  // by QtMsgType
    ::syslog(priorities[type], "%s", qUtf8Printable(message));
    printMessage(message);
}

/// This process's run. Its destructor also runs when Qt calls exit(), for --help or if the display is closed.
InstallerRun& installerRun() {
    static InstallerRun run;
    return run;
}

/// Qt's message handler until the display is open: QApplication describes over several lines why it can't
/// open it, and aborts.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    ::syslog(LOG_WARNING, "%s", qUtf8Printable(message));
    if (type != QtFatalMsg) {
        return;
    }
    printMessage(
        QStringLiteral("no usable display: DISPLAY=%1 WAYLAND_DISPLAY=%2 QT_QPA_PLATFORM=%3; start the "
                       "program in a desktop session")
            .arg(qEnvironmentVariable("DISPLAY"), qEnvironmentVariable("WAYLAND_DISPLAY"),
                 qEnvironmentVariable("QT_QPA_PLATFORM")));
    installerRun().removeTemporaryFolder();
    std::_Exit(exitFailure);  // Qt 6.8 reports a second error if the destructors run here.
}

/// --help and --version work without a display.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    const QByteArrayList helpers{"-h", "--help", "--help-all", "-v", "--version"};
    if (std::any_of(argv, argv + argc, [&](const char* argument) { return helpers.contains(argument); })) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    qInstallMessageHandler(endWithoutDisplay);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(forwardMessage);
    return application;
}

/// Reports why the installer can't start, also in a window, as its caller may show no standard error.
int refuse(const QString& problem) {
    printMessage(problem);
    QMessageBox alert(QMessageBox::Warning, QCoreApplication::applicationName(), problem, QMessageBox::Close);
    alert.setTextFormat(Qt::PlainText);
    alert.exec();
    return exitFailure;
}

int runInstaller(InstallerRun& run, const QString& pluginFolder, const QString& stepFolder) {
    const QString problem = prepareHandOffFolder();
    const QString otherRun = run.takeLock();
    if (!otherRun.isNull()) {
        return refuse(otherRun);
    }
    if (!problem.isNull()) {
        printMessage(problem);
    }
    makeButtonsImmediate();
    const LoadedPages loaded = loadPages(pluginFolder, qApp);
    for (const QString& line : loaded.problems) {
        printMessage(line);
    }
    if (loaded.pages.empty()) {
        printMessage(QCoreApplication::translate("main", "no usable plug-in in %1; reinstall the package")
                         .arg(QDir(pluginFolder).absolutePath()));
        return exitFailure;
    }
    const HandOff handOff(loaded.pages, problem);
    std::vector<InstallerPane*> pages{new IntroductionPane(problem, qApp)};
    pages.insert(pages.end(), loaded.pages.begin(), loaded.pages.end());
    if (!QDir(stepFolder).isReadable()) {
        printMessage(QCoreApplication::translate("main", "%1: is not a readable folder").arg(stepFolder));
    }
    const QStringList steps = StepRunner::stepsIn(stepFolder);
    // An earlier choice in a folder that can't be written to must not be installed.
    auto* const installation =
        steps.isEmpty() || !problem.isNull() ? nullptr : new InstallationPane(steps, handOff, qApp);
    if (installation != nullptr) {
        pages.push_back(installation);
    }
    pages.push_back(new SummaryPane(installation, handOff, qApp));

    InstallerWindow window(pages);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QString noHome = findHomeFolder();
    InstallerRun& run = installerRun();
    ::openlog("quazel-installer", LOG_PID, LOG_USER);
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quazel-installer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAZEL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tovik.quazel-installer"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "Sets up a Tovik KV card printer."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption plugins(
        QStringLiteral("plugins"), QCoreApplication::translate("main", "Load the pages from <folder>."),
        QCoreApplication::translate("main", "folder"),
        QCoreApplication::applicationDirPath() + QStringLiteral("/" QUAZEL_PLUGINS_FROM_BIN));
    parser.addOption(plugins);
    const QCommandLineOption steps(
        QStringLiteral("steps"),
        QCoreApplication::translate("main", "Run the steps of the installation in <folder>."),
        QCoreApplication::translate("main", "folder"), StepRunner::installedFolder());
    parser.addOption(steps);
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        printMessage(parser.errorText().isEmpty()
                         ? QCoreApplication::translate("main", "only options are accepted; see --help")
                         : parser.errorText());
        return exitUsage;
    }
    parser.process(*application);  // Handles --help and --version.

    quitOnTerminationSignals();
    return noHome.isNull() ? runInstaller(run, parser.value(plugins), parser.value(steps)) : refuse(noHome);
}

// quazel-installer: loads the pages and shows the window.

#include "Installer/HandOffFolder.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/PluginLoader.h"
#include "Installer/SummaryPane.h"
#include "Installer/TerminationSignals.h"

#include <QApplication>
#include <QByteArrayList>
#include <QCommandLineParser>
#include <QDir>

#include <syslog.h>

#include <algorithm>
#include <cstdio>
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

/// Returns null without a display, as QApplication would abort. --help and --version work without one, so
/// they get a QCoreApplication.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    const QByteArrayList helpers{"-h", "--help", "--help-all", "-v", "--version"};
    if (std::any_of(argv, argv + argc, [&](const char* argument) { return helpers.contains(argument); })) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(variable)) {
            return std::make_unique<QApplication>(argc, argv);
        }
    }
    printMessage(QStringLiteral(
        "no display: DISPLAY and WAYLAND_DISPLAY are not set; start the program in a desktop session"));
    return nullptr;
}

int runInstaller(const QString& pluginFolder) {
    const QString problem = prepareHandOffFolder();
    if (!problem.isNull()) {
        printMessage(problem);
    }
    const LoadedPages loaded = loadPages(pluginFolder, qApp);
    for (const QString& line : loaded.problems) {
        printMessage(line);
    }
    if (loaded.pages.empty()) {
        printMessage(QCoreApplication::translate("main", "no usable plug-in in %1; reinstall the package")
                         .arg(QDir(pluginFolder).absolutePath()));
        return exitFailure;
    }
    std::vector<InstallerPane*> pages{new IntroductionPane(problem, qApp)};
    pages.insert(pages.end(), loaded.pages.begin(), loaded.pages.end());
    pages.push_back(new SummaryPane(qApp));

    InstallerWindow window(pages);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    if (!application) {
        return exitFailure;
    }
    QCoreApplication::setOrganizationName(QStringLiteral("Tovik"));
    QCoreApplication::setApplicationName(QStringLiteral("quazel-installer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAZEL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tovik.quazel-installer"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Installs the driver of the Tovik KV card printers."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption plugins(
        QStringLiteral("plugins"), QCoreApplication::translate("main", "Load the pages from <folder>."),
        QCoreApplication::translate("main", "folder"),
        QCoreApplication::applicationDirPath() + QStringLiteral("/" QUAZEL_PLUGINS_FROM_BIN));
    parser.addOption(plugins);
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        printMessage(parser.errorText().isEmpty()
                         ? QCoreApplication::translate("main", "only options are accepted; see --help")
                         : parser.errorText());
        return exitUsage;
    }
    parser.process(*application);  // Handles --help and --version.

    ::openlog("quazel-installer", LOG_PID, LOG_USER);
    qInstallMessageHandler(forwardMessage);
    quitOnTerminationSignals();
    return runInstaller(parser.value(plugins));
}

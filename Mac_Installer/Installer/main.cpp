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

/// Writes a line at once, so that lines of different threads don't interleave.
void complain(const QString& text) {
    std::fprintf(stderr, "quazel-installer: %s\n", qUtf8Printable(text));
}

/// Message handler of the program and its pages, on any thread: to syslog(3) and to standard error.
void forwardMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    constexpr int priorities[]{LOG_DEBUG, LOG_WARNING, LOG_ERR, LOG_CRIT, LOG_INFO};  // by QtMsgType
    ::syslog(priorities[type], "%s", qUtf8Printable(message));
    complain(message);
}

/// QApplication aborts without a display. Returns null then; --help and --version work without one, so they
/// get a QCoreApplication.
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
    complain(QStringLiteral(
        "there is no display to open a window on: neither DISPLAY nor WAYLAND_DISPLAY is set"));
    return nullptr;
}

int runInstaller(const QString& pluginFolder) {
    const QString problem = prepareHandOffFolder();
    if (!problem.isNull()) {
        complain(problem);
    }
    const LoadedPages loaded = loadPages(pluginFolder, qApp);
    for (const QString& line : loaded.problems) {
        complain(line);
    }
    if (loaded.pages.empty()) {
        complain(QCoreApplication::translate("main", "there is no page to show: no usable plug-in in %1")
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
        complain(parser.errorText().isEmpty()
                     ? QCoreApplication::translate("main", "there are no other arguments; see --help")
                     : parser.errorText());
        return exitUsage;
    }
    parser.process(*application);  // Handles --help and --version.

    ::openlog("quazel-installer", LOG_PID, LOG_USER);
    qInstallMessageHandler(forwardMessage);
    quitOnTerminationSignals();
    return runInstaller(parser.value(plugins));
}

// quazel-installer: loads the pages and shows the window.

#include "Installer/HandOffFolder.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/PluginLoader.h"
#include "Installer/SummaryPane.h"
#include "Installer/SystemLogHandler.h"
#include "Installer/TerminationSignals.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QString>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

/// QApplication aborts without a display.
bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

void complain(const QString& text) {
    std::fprintf(stderr, "quazel-installer: %s\n", qUtf8Printable(text));
}

/// Returns null if there is no display. --help and --version must work without one, so they get a
/// QCoreApplication.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    for (int index = 1; index < argc; ++index) {
        for (const char* const option : {"-h", "--help", "--help-all", "-v", "--version"}) {
            if (std::strcmp(argv[index], option) == 0) {
                return std::make_unique<QCoreApplication>(argc, argv);
            }
        }
    }
    return hasDisplay() ? std::make_unique<QApplication>(argc, argv) : nullptr;
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
                     .arg(QDir::toNativeSeparators(QFileInfo(pluginFolder).absoluteFilePath())));
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
        complain(QStringLiteral(
            "there is no display to open a window on: neither DISPLAY nor WAYLAND_DISPLAY is set"));
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

    forwardMessagesToSystemLog();
    quitOnTerminationSignals();
    return runInstaller(parser.value(plugins));
}

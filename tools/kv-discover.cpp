// kv-discover: the page's search for printers, on a terminal, for support staff.

#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int exitFound = 0;
constexpr int exitNoneFound = 1;
constexpr int exitUsage = 2;

/// The list's first entry is not a printer but the invitation to type an address.
int printPrinters() {
    for (qsizetype index = 1; index < g_PrinterList->count(); ++index) {
        std::fputs(qUtf8Printable(g_PrinterList->at(index)), stdout);
    }
    return g_PrinterList->count() > 1 ? exitFound : exitNoneFound;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kv-discover"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAZEL_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Searches this machine's networks for Tovik KV card printers and prints them, one a "
                       "line, after the model\n"
                       "texts of all printers that answered. The steps are in QzInstall.log in the documents "
                       "folder; an earlier\n"
                       "log is kept there under the date and time of its last record.\n\n"
                       "Exit status: 0 when a printer was found, 1 when none was, 2 for wrong usage."));
    parser.addHelpOption();
    parser.addVersionOption();
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        const QString reason = parser.errorText();
        std::fprintf(stderr, "kv-discover: %s\n",
                     reason.isEmpty() ? "it takes no arguments; see --help" : qUtf8Printable(reason));
        return exitUsage;
    }
    parser.process(application);  // Answers --help and --version.

    keepEarlierLog();
    GetTovikQuazelPrinters();
    return printPrinters();
}

// kv-discover: the page's search for printers, on a terminal, for support staff.

#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"

#include <QByteArray>
#include <QCommandLineParser>
#include <QCoreApplication>

#include <unistd.h>

#include <cstdio>

namespace {

constexpr int exitFound = 0;
constexpr int exitNoneFound = 1;
constexpr int exitUsage = 2;

/// Writes one line of the search to standard error. Its model text comes from the network, so on a terminal,
/// which would interpret control characters, bytes other than printable ASCII are shown as "\xHH".
ssize_t writeModelText(void* /*cookie*/, const char* line, std::size_t size) {
    const bool isTerminal = ::isatty(STDERR_FILENO) != 0;
    QByteArray shown;
    for (std::size_t index = 0; index < size; ++index) {
        const char byte = line[index];
        const bool isLineEnd = byte == '\n' && index + 1 == size;
        if (isTerminal && !isLineEnd && (byte < ' ' || byte > '~')) {
            shown += "\\x" + QByteArray(1, byte).toHex();
        } else {
            shown += byte;
        }
    }
    std::fwrite(shown.constData(), 1, static_cast<std::size_t>(shown.size()), stderr);
    return static_cast<ssize_t>(size);
}

/// Redirects the search's own standard output to standard error, so that standard output has only printers.
void search() {
    FILE* const output = stdout;
    stdout = ::fopencookie(nullptr, "w", {nullptr, writeModelText, nullptr, nullptr});  // glibc allows it.
    std::setvbuf(stdout, nullptr, _IONBF, 0);  // Unbuffered: the search prints each line by one call.
    GetTovikQuazelPrinters();
    std::fclose(stdout);
    stdout = output;
}

/// Skips the list's first entry, which is for typing an address.
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
    parser.setApplicationDescription(QStringLiteral(
        "Searches this machine's networks for Tovik KV card printers and prints them, one per\n"
        "line. The model texts of all printers that responded are printed to standard error.\n"
        "The search is logged to QzInstall.log in the documents folder; an earlier log is\n"
        "renamed with the date and time of its last record.\n\n"
        "Exit status: 0 if a printer was found, 1 if none was, 2 for wrong usage."));
    parser.addHelpOption();
    parser.addVersionOption();
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        const QString reason = parser.errorText();
        std::fprintf(stderr, "kv-discover: %s\n",
                     reason.isEmpty() ? "it takes no arguments; see --help" : qUtf8Printable(reason));
        return exitUsage;
    }
    parser.process(application);  // Handles --help and --version.

    keepEarlierLog();
    search();
    return printPrinters();
}

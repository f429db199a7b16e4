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

/// Writes one line of the search to standard error. Its model text is the network's: a terminal, which would
/// obey control characters, gets all but printable ASCII as "\xHH".
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

/// What the search itself prints to standard output goes to standard error, so that only printers are left.
void search() {
    FILE* const output = stdout;
    stdout = ::fopencookie(nullptr, "w", {nullptr, writeModelText, nullptr, nullptr});  // glibc allows it.
    std::setvbuf(stdout, nullptr, _IONBF, 0);  // Each print is one line, and one write.
    GetTovikQuazelPrinters();
    std::fclose(stdout);
    stdout = output;
}

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
    parser.setApplicationDescription(QStringLiteral(
        "Searches this machine's networks for Tovik KV card printers and prints them, one a "
        "line. The model texts\n"
        "of all printers that answered go to standard error. The steps are in QzInstall.log in "
        "the documents\n"
        "folder; an earlier log is kept there under the date and time of its last record.\n\n"
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
    search();
    return printPrinters();
}

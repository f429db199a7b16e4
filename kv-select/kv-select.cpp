// kv-select: finds a printer and hands it over from a terminal. It operates the installer's page as a user
// does, without a display, so that the search, the checks, the logs and the hand-off file are the page's own.

#include "Installer/HandOffFolder.h"
#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "discovery/ModelCatalog.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QMessageBox>

#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { exitDone = 0, exitRefused = 1, exitUsage = 2, exitNoneOrSeveral = 3, exitSignal = 128 };

void complain(const QString& text) {
    std::fprintf(stderr, "kv-select: %s\n", qUtf8Printable(text));
}

/// Message handler, on any thread: the page's events go to syslog(3), as the installer's do.
void logMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message) {
    ::syslog(LOG_INFO, "%s", qUtf8Printable(message));
}

QByteArray handOffFile;  // Its path, for the file system.

/// Ends the program at once, even while it waits for the print service, and leaves no hand-off file.
void onSignal(int number) {
    ::unlink(handOffFile.constData());
    ::_exit(exitSignal + number);
}

/// Writes what the search prints: one line for each printer that responds, including other manufacturers'.
/// The model text in it comes from the network, and a terminal interprets control characters, so bytes other
/// than printable ASCII are written as "\xHH".
ssize_t writePrintable(void* terminal, const char* line, std::size_t size) {
    QByteArray shown;
    for (std::size_t index = 0; index < size; ++index) {
        const char byte = line[index];
        const bool isLineEnd = byte == '\n' && index + 1 == size;
        if (!isLineEnd && (byte < ' ' || byte > '~')) {
            shown += "\\x" + QByteArray(1, byte).toHex();
        } else {
            shown += byte;
        }
    }
    if (terminal != nullptr) {
        std::fwrite(shown.constData(), 1, static_cast<std::size_t>(shown.size()),
                    static_cast<FILE*>(terminal));
    }
    return static_cast<ssize_t>(size);
}

/// Runs a search. What it prints to standard output and error goes to the terminal, for support staff, or
/// nowhere.
template <class Search>
void runSearch(Search search) {
    FILE* const output = stdout;
    FILE* const errors = stderr;
    FILE* const terminal = ::isatty(STDERR_FILENO) != 0 ? stderr : nullptr;
    stdout = stderr = ::fopencookie(terminal, "w", {nullptr, writePrintable, nullptr, nullptr});
    std::setvbuf(stderr, nullptr, _IONBF, 0);  // Unbuffered: the search prints each line by one call.
    std::fputs("Searching for printers ...\n", stderr);
    search();
    std::fclose(stderr);
    stdout = output;  // glibc allows the assignments.
    stderr = errors;
}

/// A printer in the list, such as "Tovik KV260 @192.168.1.40".
struct Printer {
    explicit Printer(const QString& item)
        : model(item.section(u' ', 1, 1)), address(item.section(u'@', 1).trimmed()) {}
    [[nodiscard]] QString text() const { return model + u' ' + address; }
    QString model;
    QString address;
};

int listPrinters() {
    runSearch([] { GetTovikQuazelPrinters(); });
    const QStringList printers = g_PrinterList->mid(1);  // The first entry is "Enter IP Address Manually".
    for (const QString& item : printers) {
        std::puts(qUtf8Printable(Printer(item).text()));
    }
    return printers.isEmpty() ? exitNoneOrSeveral : exitDone;
}

/// Writes the informative text of each alert to standard error and closes the alert.
class AlertPrinter : public QObject {
  public:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* const alert = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(object) : nullptr;
        if (alert != nullptr) {
            complain(alert->informativeText());
            QMetaObject::invokeMethod(alert, &QDialog::accept, Qt::QueuedConnection);
        }
        return false;
    }
};

/// Selects "Over the network" and waits for the search.
void searchWithPage(NetworkPrinterConfigPane& page) {
    QEventLoop search;
    QObject::connect(&page, &InstallerPane::buttonsChanged, &search, [&] {
        if (page.isNextEnabled()) {
            search.quit();
        }
    });
    page.radiobtnPrinterType()->cellAt(1, 0)->click();
    if (!page.isNextEnabled()) {
        search.exec();
    }
}

/// Whether the page's address field takes the text, and the page accepts it.
bool isAddress(const QString& text) {
    return !text.isEmpty() && OnlyIntegerValueFormatter().isPartialStringValid(text, nullptr, nullptr) &&
           IPAddressTextValidator().validate(text);
}

/// Chooses the one printer in the page's list that is meant: by its address; or by its model, if that is not
/// empty. An address that is not in the list is typed. False if there is none, or more than one.
bool choosePrinter(NetworkPrinterConfigPane& page, const QString& model, const QString& address) {
    QStringList matching;
    int match = 0;
    for (int index = 1; index < page.PrinterIP()->count(); ++index) {
        const Printer printer(page.PrinterIP()->itemText(index));
        if (address.isEmpty() ? printer.model.startsWith(model) : printer.address == address) {
            matching += printer.text();
            match = index;
        }
    }
    if (matching.isEmpty() && !address.isEmpty()) {
        page.IPAddressText()->setStringValue(address);
        return true;
    }
    if (matching.count() == 1) {
        page.PrinterIP()->selectItemAtIndex(match);
        return true;
    }
    if (matching.isEmpty()) {
        complain(u"no %1 responded; for one on another network, use kv-select MODEL ADDRESS"_s.arg(
            model.isEmpty() ? u"printer"_s : model));
    } else {
        complain(u"more than one printer responded; use kv-select MODEL ADDRESS:\n"_s + matching.join(u'\n'));
    }
    return false;
}

/// `column` is that of the model, if one is given.
int handOver(const QString& model, int column, const QString& address) {
    const QString problem = prepareHandOffFolder();
    if (!problem.isNull()) {
        complain(problem);
        return exitRefused;
    }
    const QString file = documentsDirectory() + u"/KV.txt"_s;
    handOffFile = QFile::encodeName(file);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, onSignal) == SIG_IGN) {
            (void)std::signal(number, SIG_IGN);  // As nohup wants it.
        }
    }
    AlertPrinter alerts;
    qApp->installEventFilter(&alerts);
    NetworkPrinterConfigPane page;
    page.awakeFromNib();
    page.didEnterPane(InstallerDirectionForward);
    runSearch([&page] { searchWithPage(page); });
    if (!choosePrinter(page, model, address)) {
        return exitNoneOrSeveral;
    }
    if (!model.isEmpty()) {
        page.radiobtnPrinterModel()->selectCellAtRow(0, column);  // The page compares it with the printer's.
    }
    if (!page.shouldExitPane(InstallerDirectionForward)) {
        return exitRefused;
    }
    const QString line = page.GetFileData(file);
    if (line.isEmpty()) {
        complain(u"%1 can't be written"_s.arg(file));
        return exitRefused;
    }
    std::puts(qUtf8Printable(line));
    return exitDone;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");  // A theme may need a display.
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"Tovik"_s);
    QCoreApplication::setApplicationName(u"kv-select"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAZEL_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Hands a Tovik KV card printer to its driver's installation, as quazel-installer does: the given "
        u"one,\n"
        "the only one of MODEL that responds to a search, or the only one that responds. Prints the line "
        "that\n"
        "was handed over. The steps are logged to QzInstall.log in the documents folder; an earlier log is\n"
        "renamed with the date and time of its last record.\n\n"
        "Exit status: 0 if a printer was handed over or listed, 1 if it was refused, 2 for wrong usage, 3 if "
        "no\n"
        "printer responded, or more than one."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption list(u"list"_s, u"Print the printers that respond, one per line."_s);
    parser.addOption(list);
    parser.addPositionalArgument(u"MODEL"_s, u"KV210, KV260, KV410 or KV460"_s, u"[MODEL"_s);
    parser.addPositionalArgument(u"ADDRESS"_s, u"IPv4 address"_s, u"[ADDRESS]]"_s);
    const bool isParsed = parser.parse(QCoreApplication::arguments());
    const QStringList arguments = parser.positionalArguments();
    const QString model = arguments.value(0);
    const QString address = arguments.value(1);
    const auto* const row =
        std::find_if(modelCatalog.begin(), modelCatalog.end(),
                     [&](const CatalogRow& each) { return model == QLatin1String(each.modelName); });
    QString problem;
    if (!isParsed) {
        problem = parser.errorText();
    } else if (arguments.count() > (parser.isSet(list) ? 0 : 2)) {
        problem = u"too many arguments"_s;
    } else if (!arguments.isEmpty() && row == modelCatalog.end()) {
        problem = u"unknown model \"%1\""_s.arg(model);
    } else if (arguments.count() == 2 && !isAddress(address)) {
        problem = u"\"%1\" is not an IPv4 address"_s.arg(address);
    }
    if (!problem.isNull()) {
        complain(problem + u"; see --help"_s);
        return exitUsage;
    }
    parser.process(application);  // Handles --help and --version.

    ::openlog("kv-select", LOG_PID, LOG_USER);
    qInstallMessageHandler(logMessage);
    keepEarlierLog();
    return parser.isSet(list) ? listPrinters()
                              : handOver(model, static_cast<int>(row - modelCatalog.begin()), address);
}

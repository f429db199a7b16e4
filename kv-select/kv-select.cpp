// kv-select: finds a printer and hands it over from a terminal. It operates the installer's page as a user
// does, without a display, so that the search, the checks, the logs and the hand-off file are the page's own.

#include "Installer/HandOff.h"
#include "Installer/InstallerRun.h"
#include "Installer/StepRunner.h"
#include "Installer/TerminationSignals.h"
#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "discovery/ModelCatalog.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "handoff/SelectionFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QMessageBox>

#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { exitDone = 0, exitRefused = 1, exitUsage = 2, exitNoneOrSeveral = 3, exitStepFailed = 4 };

void complain(const QString& text) {
    std::fprintf(stderr, "kv-select: %s\n", qUtf8Printable(text));
}

/// Qt's message handler: forwards to syslog(3). Any thread.
void logMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    constexpr int priorities[]{LOG_DEBUG, LOG_WARNING, LOG_ERR, LOG_CRIT, LOG_INFO};  // by QtMsgType
    ::syslog(priorities[type], "%s", qUtf8Printable(message));
}

// Paths for onSignal; never destroyed. The hand-off file's is empty until this run may write it.
char fileToRemove[PATH_MAX];
char lockFile[PATH_MAX];
char temporaryFolder[PATH_MAX];

void setPath(char (&path)[PATH_MAX], const QString& value) {
    qstrncpy(path, QFile::encodeName(value), sizeof(path));
}

/// Removes what this run has created and ends the program by the signal, even while it waits for the print
/// service. Async-signal-safe; no function that removes a folder is.
void onSignal(int number) {
    ::unlink(fileToRemove);
    const pid_t child = ::_Fork();
    if (child == 0) {
        ::execl("/bin/rm", "rm", "-rf", "--", lockFile, temporaryFolder, nullptr);
        ::_exit(1);
    }
    if (child > 0) {
        ::waitpid(child, nullptr, 0);
    }
    (void)::raise(number);
}

/// Handles the signals once; those that are ignored, as under nohup, stay ignored.
void cleanUpOnSignals(const InstallerRun& run) {
    setPath(temporaryFolder, run.temporaryFolder());
    struct sigaction handle {};
    handle.sa_handler = onSignal;
    handle.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present {};
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            ::sigaction(number, &handle, nullptr);
        }
    }
}

/// Under sudo the files are root's; so is the folder, unless sudo keeps the user's HOME.
void warnUnderSudo(const QString& file) {
    const QString user = qEnvironmentVariable("SUDO_USER");
    if (::geteuid() == 0 && !user.isEmpty() && user != u"root"_s) {
        complain(
            u"warning: under sudo, %1 will belong to root; to hand over as %2, run kv-select without sudo"_s
                .arg(file, user));
    }
}

/// Writes the results to standard output. Returns the exit status.
int print(const QStringList& lines) {
    for (const QString& line : lines) {
        std::puts(qUtf8Printable(line));
    }
    if (std::fflush(stdout) == 0) {
        return exitDone;
    }
    complain(u"can't write to standard output"_s);
    return exitRefused;
}

/// Writes what the search prints: a line with the model text of each device ID, including other
/// manufacturers', and errors. The text comes from the network, and a terminal interprets control characters,
/// so bytes other than printable ASCII are written as "\xHH". `terminal` is a FILE*, or null to discard.
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

/// Runs a search. If standard error is a terminal, the search's output goes there, for support staff;
/// otherwise it is discarded.
template <class Search>
void runSearch(Search search) {
    FILE* const output = stdout;
    FILE* const errors = stderr;
    FILE* const terminal = ::isatty(STDERR_FILENO) != 0 ? stderr : nullptr;
    stdout = stderr = ::fopencookie(terminal, "w", {nullptr, writePrintable, nullptr, nullptr});
    std::setvbuf(stderr, nullptr, _IONBF, 0);  // Unbuffered: one call for each line.
    std::fputs("Searching for printers ...\n", stderr);
    search();
    std::fclose(stderr);
    stdout = output;  // glibc allows the assignments.
    stderr = errors;
}

/// An address without leading zeros, for comparison.
QString plain(const QString& address) {
    QStringList numbers = address.split(u'.');
    for (QString& number : numbers) {
        number = QString::number(number.toInt());
    }
    return numbers.join(u'.');
}

/// A printer in the list, such as "Tovik KV260 @192.168.1.40".
struct Printer {
    explicit Printer(const QString& item)
        : model(item.section(u' ', 1, 1)), address(item.section(u'@', 1).trimmed()) {}
    [[nodiscard]] QString text() const { return model + u' ' + address; }
    QString model;
    QString address;
};

void complainNotFound(const QString& what) {
    complain(
        u"no %1 found; switch it on and connect it to this network, or use kv-select MODEL ADDRESS"_s.arg(
            what));
}

int listPrinters() {
    runSearch([] { GetTovikQuazelPrinters(); });
    QStringList printers;
    for (const QString& item : g_PrinterList->mid(1)) {  // The first entry is "Enter IP Address Manually".
        printers += Printer(item).text();
    }
    if (printers.isEmpty()) {
        complainNotFound(u"KV printer"_s);
        return exitNoneOrSeveral;
    }
    return print(printers);
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

/// Selects the list entry with this address; without an address, the only one of this model, or of any model
/// if it is empty. An unlisted address is typed. False, with a message, if none or several match.
bool choosePrinter(NetworkPrinterConfigPane& page, const QString& model, const QString& address) {
    QStringList matching;
    int match = 0;
    for (int index = 1; index < page.PrinterIP()->count(); ++index) {
        const Printer printer(page.PrinterIP()->itemText(index));
        if (printer.model == model && printer.address == plain(address)) {
            page.PrinterIP()->selectItemAtIndex(index);  // Even if another printer has the same address.
            return true;
        }
        if (address.isEmpty() ? printer.model.startsWith(model) : printer.address == plain(address)) {
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
        complainNotFound(model.isEmpty() ? u"KV printer"_s : model);
    } else {
        complain(u"more than one printer responded; use kv-select MODEL ADDRESS:\n"_s + matching.join(u'\n'));
    }
    return false;
}

/// Operates the page as a user does. Empty texts are arguments that were not given; `column` is the model's.
/// Returns the exit status.
int handOver(const QString& model, int column, const QString& address) {
    const QString file = selectionFilePath();
    AlertPrinter alerts;
    qApp->installEventFilter(&alerts);
    NetworkPrinterConfigPane page;
    page.awakeFromNib();
    page.didEnterPane(InstallerDirectionForward);
    if (QFile::exists(file)) {
        complain(u"%1 can't be removed"_s.arg(file));
        return exitRefused;
    }
    runSearch([&page] { searchWithPage(page); });
    if (!choosePrinter(page, model, address)) {
        return exitNoneOrSeveral;
    }
    RadioMatrix& models = *page.radiobtnPrinterModel();
    if (models.isEnabled()) {
        models.cellAt(0, column)->click();
    } else if (!model.isEmpty()) {
        models.selectCellAtRow(0, column);  // Locked for a listed printer; the page compares the two.
    }
    setPath(fileToRemove, file);
    if (!page.shouldExitPane(InstallerDirectionForward)) {
        return exitRefused;
    }
    const QString line = page.GetFileData(file);
    if (line.isEmpty()) {
        complain(u"%1 can't be written"_s.arg(file));
    }
    const int status = line.isEmpty() ? int(exitRefused) : print({line});
    if (status != exitDone) {
        page.RemoveFile();
    } else if (::isatty(STDERR_FILENO) != 0) {
        complain(u"wrote %1"_s.arg(file));
    }
    return status;
}

/// Runs the steps, with their output on standard error. A signal ends the running step, then the program.
/// KV.txt stays, so that the steps can be repeated. Returns the exit status.
int install(const QStringList& steps) {
    quitOnTerminationSignals();
    setPath(fileToRemove, {});
    auto runner = std::make_unique<StepRunner>();
    QObject::connect(runner.get(), &StepRunner::lineWritten,
                     [](const QString& line) { std::fprintf(stderr, "%s\n", qUtf8Printable(line)); });
    QObject::connect(runner.get(), &StepRunner::finished, [](bool succeeded, const QString& message) {
        if (!succeeded) {
            complain(u"not set up: "_s + message);
        }
        QCoreApplication::exit(succeeded ? exitDone : exitStepFailed);
    });
    const auto start = [&] { runner->start(steps, selectionFilePath()); };
    QMetaObject::invokeMethod(runner.get(), start, Qt::QueuedConnection);  // exit() needs an event loop.
    const int status = QCoreApplication::exec();
    runner.reset();
    if (const int number = terminationSignal(); number != 0) {
        (void)std::signal(number, SIG_DFL);
        onSignal(number);
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    const QString noHome = findHomeFolder();
    // Before the application object, as Qt may create a folder in TMPDIR, too. Static, as --help calls
    // exit().
    static InstallerRun run;
    cleanUpOnSignals(run);
    ::openlog("kv-select", LOG_PID, LOG_USER);
    qInstallMessageHandler(logMessage);
    // A closed standard output is an error of print(), also before CUPS.
    (void)std::signal(SIGPIPE, SIG_IGN);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");  // A theme may need a display.
    QStringList all;
    for (int index = 0; index < argc; ++index) {
        all += QString::fromLocal8Bit(argv[index]);
    }
    int one = 1;  // QApplication would take its own options out.
    const QApplication application(one, argv);
    qunsetenv("QT_QPA_PLATFORM");  // A step of the installation may show a window.
    QCoreApplication::setApplicationName(u"kv-select"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAZEL_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        uR"(Hands a Tovik KV card printer to its driver's installation, as quazel-installer does: the given one,
the only one of MODEL that responds to a search, or the only one that responds. Prints the line that
was handed over. All of this is logged to QzInstall.log in the documents folder; an earlier log is
renamed with the date and time of its last record.

Exit status: 0 if a printer was handed over or listed, 1 if it was refused, 2 for wrong usage, 3 if no
printer was found, or more than one, 4 if a step of the installation failed.)"_s);
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption list(u"list"_s, u"Print the printers that respond, one per line."_s);
    const QCommandLineOption installing(u"install"_s, u"Then run the steps of the installation."_s);
    const QCommandLineOption folder(u"steps"_s, u"With --install: run the steps in <folder>."_s, u"folder"_s,
                                    StepRunner::installedFolder());
    parser.addOptions({list, installing, folder});
    parser.addPositionalArgument(u"MODEL"_s, u"KV210, KV260, KV410 or KV460"_s, u"[MODEL"_s);
    parser.addPositionalArgument(u"ADDRESS"_s, u"IPv4 address"_s, u"[ADDRESS]]"_s);
    const bool isParsed = parser.parse(all);
    const bool isInstalling = parser.isSet(installing);
    const QStringList steps = StepRunner::stepsIn(parser.value(folder));
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
    } else if (parser.isSet(list) && isInstalling) {
        problem = u"--list installs nothing"_s;
    } else if (parser.isSet(folder) && !isInstalling) {
        problem = u"--steps needs --install"_s;
    } else if (isInstalling && steps.isEmpty()) {
        problem = u"no steps in %1"_s.arg(parser.value(folder));
    } else if (!arguments.isEmpty() && row == modelCatalog.end()) {
        problem = u"unknown model \"%1\""_s.arg(model);
    } else if (arguments.count() == 2 && !isAddress(address)) {
        problem = u"\"%1\" is not an IPv4 address"_s.arg(address);
    }
    if (!problem.isNull()) {
        complain(problem + u"; see --help"_s);
        return exitUsage;
    }
    parser.process(all);  // Handles --help and --version.
    problem = noHome;

    if (problem.isNull() && !parser.isSet(list)) {
        problem = prepareHandOffFolder();
    }
    if (problem.isNull()) {
        problem = run.takeLock();
    }
    if (!problem.isNull()) {
        complain(problem);
        return exitRefused;
    }
    setPath(lockFile, run.lockFile());
    keepEarlierLog();
    if (!parser.isSet(list) && !isInstalling) {
        warnUnderSudo(selectionFilePath());
    }
    int status = parser.isSet(list) ? listPrinters()
                                    : handOver(model, static_cast<int>(row - modelCatalog.begin()), address);
    if (isInstalling && status == exitDone) {
        status = install(steps);
    }
    // Another run may start once the lock is released; a late signal must not remove its files.
    sigset_t everySignal;
    sigfillset(&everySignal);
    ::sigprocmask(SIG_BLOCK, &everySignal, nullptr);
    return status;
}

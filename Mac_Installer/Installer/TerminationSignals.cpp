#include "Installer/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace {

// Self-pipe: write() is async-signal-safe, and the event loop reads the other end.
std::array<int, 2> signalPipe{-1, -1};

void onSignal(int /*number*/) {
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = error;
}

}  // namespace

void quitOnTerminationSignals() {
    if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;  // The signals keep their default action.
    }
    auto* const notifier =
        new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    // Not quit(): it asks the windows first, and a modal alert would block it.
    QObject::connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(),
                     [] { QCoreApplication::exit(0); });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaction(number, &action, nullptr);
    }
}

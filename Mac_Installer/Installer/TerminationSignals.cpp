#include "Installer/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <sys/eventfd.h>

#include <cerrno>
#include <csignal>

namespace {

int wakeUp = -1;  // eventfd: writing is async-signal-safe and wakes the event loop.
volatile std::sig_atomic_t received = 0;

void onSignal(int number) {
    const int error = errno;
    received = number;
    (void)::eventfd_write(wakeUp, 1);
    errno = error;
}

}  // namespace

void quitOnTerminationSignals() {
    wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeUp < 0) {
        return;  // The signals keep their default action.
    }
    auto* const notifier = new QSocketNotifier(wakeUp, QSocketNotifier::Read, QCoreApplication::instance());
    // Not quit(): it closes the windows first, which a modal alert prevents.
    QObject::connect(notifier, &QSocketNotifier::activated, [] { QCoreApplication::exit(0); });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        if (std::signal(number, onSignal) == SIG_IGN) {
            (void)std::signal(number, SIG_IGN);
        }
    }
}

int terminationSignal() {
    return received;
}

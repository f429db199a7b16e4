#include "Installer/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <sys/eventfd.h>

#include <cerrno>
#include <csignal>

namespace {

int wakeUp = -1;  // Its write() is async-signal-safe, and the event loop waits for it.

void onSignal(int /*number*/) {
    const int error = errno;
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
    // Not quit(): it asks the windows first, and a modal alert would block it.
    QObject::connect(notifier, &QSocketNotifier::activated, [] { QCoreApplication::exit(0); });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        (void)std::signal(number, onSignal);
    }
}

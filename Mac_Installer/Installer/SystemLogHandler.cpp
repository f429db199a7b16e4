#include "Installer/SystemLogHandler.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <syslog.h>

#include <cstdio>

namespace {

int priorityOf(QtMsgType type) {
    switch (type) {
        case QtDebugMsg:
            return LOG_DEBUG;
        case QtInfoMsg:
            return LOG_INFO;
        case QtWarningMsg:
            return LOG_WARNING;
        case QtCriticalMsg:
            return LOG_ERR;
        case QtFatalMsg:
            return LOG_CRIT;
    }
    return LOG_INFO;
}

void forward(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    const QByteArray text = message.toUtf8();
    ::syslog(priorityOf(type), "%s", text.constData());
    // A single call, so that lines of different threads don't interleave.
    std::fprintf(stderr, "quazel-installer: %s\n", text.constData());
}

}  // namespace

void forwardMessagesToSystemLog() {
    ::openlog("quazel-installer", LOG_PID, LOG_USER);
    qInstallMessageHandler(forward);
}

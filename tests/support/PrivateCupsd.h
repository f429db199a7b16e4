// A print service of the test's own, with the queues that it asks for.

#pragma once

#include "support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QMap>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

/// Runs a cupsd as long as it lives, and points this process's CUPS calls to it. Made before the first of
/// them.
class PrivateCupsd {
  public:
    /// Queue names with the content of their PPDs; null for a queue without one. Returns when it answers.
    explicit PrivateCupsd(const QMap<QString, QByteArray>& queues) {
        QDir(folder_.path()).mkpath(QStringLiteral("etc/ppd"));
        QByteArray configuration;
        for (auto queue = queues.begin(); queue != queues.end(); ++queue) {
            configuration += "<Printer " + queue.key().toUtf8() +
                             ">\nDeviceURI file:///dev/null\nState Idle\nAccepting Yes\n</Printer>\n";
            if (!queue.value().isNull()) {
                writeFile(ppdPath(queue.key()), queue.value());
            }
        }
        writeFile(folder_.filePath(QStringLiteral("etc/printers.conf")), configuration);
        qputenv("CUPS_SERVER", folder_.filePath(QStringLiteral("cups.sock")).toUtf8());
        qputenv("CUPS_SERVERROOT", folder_.filePath(QStringLiteral("etc")).toUtf8());
        qputenv("TMPDIR", folder_.filePath(QStringLiteral("tmp")).toUtf8());
        process_.setProcessChannelMode(QProcess::ForwardedChannels);
        // It ends with this process, also when that is killed.
        process_.setChildProcessModifier([test = ::getpid()] {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (::getppid() != test) {
                ::_exit(1);
            }
        });
        process_.start(sourcePath(QStringLiteral("tools/private-cupsd")), {folder_.path()});
        for (int tries = 0; !QFile::exists(qEnvironmentVariable("CUPS_SERVER")); ++tries) {
            if (tries == 1000 || process_.waitForFinished(10)) {
                qFatal("the print service does not get ready");
            }
        }
    }
    PrivateCupsd(const PrivateCupsd&) = delete;
    PrivateCupsd& operator=(const PrivateCupsd&) = delete;
    ~PrivateCupsd() {
        stop();
        process_.waitForFinished();
    }

    /// Returns when it no longer listens. Any thread.
    void stop() {
        process_.kill();
        siginfo_t ended;
        ::waitid(P_PID, static_cast<id_t>(process_.processId()), &ended, WEXITED | WNOWAIT);
    }

    [[nodiscard]] QString ppdPath(const QString& queue) const {
        return folder_.filePath(QStringLiteral("etc/ppd/%1.ppd").arg(queue));
    }

    /// A PPD of the series' form whose PCFileName attributes are `pcFileNames`, one a line.
    [[nodiscard]] static QByteArray ppd(const QByteArrayList& pcFileNames) {
        QByteArray text = contentOf(sourcePath(QStringLiteral("tools/kv-series.ppd.in")));
        text.replace("*PCFileName: \"@MODEL@.PPD\"\n",
                     "*PCFileName: \"" + pcFileNames.join("\"\n*PCFileName: \"") + "\"\n");
        return text.replace("@MODEL@", "KV");
    }

  private:
    QTemporaryDir folder_;
    QProcess process_;
};

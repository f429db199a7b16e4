// A print service of the test's own, with the queues that it asks for.

#pragma once

#include "support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QMap>

#include <chrono>
#include <csignal>
#include <thread>

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
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(
            sourcePath(QStringLiteral("tools/private-cupsd")),
            {folder_.path(), QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("echo ready; cat")});
        if (!process_.waitForReadyRead(40'000) || process_.readLine() != "ready\n") {
            qFatal("the print service does not get ready");
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
        ::kill(static_cast<pid_t>(process_.processId()), SIGTERM);
        for (int tries = 0; QFile::exists(folder_.filePath(QStringLiteral("cups.sock"))); ++tries) {
            if (tries == 1000) {
                qFatal("the print service does not stop");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
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

// What the page writes to the system log, read back.

#pragma once

#include "support/Fixtures.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

/// Catches the lines of the category "quazel.page" as long as it lives, in a file, so that the lines of a
/// forked child count too. One at a time, made after the test has begun, as Qt Test has a handler of its own.
class SystemLogCapture {
  public:
    SystemLogCapture() {
        file_ = folder_.filePath(QStringLiteral("system-log"));
        previous_ = qInstallMessageHandler(append);
    }
    SystemLogCapture(const SystemLogCapture&) = delete;
    SystemLogCapture& operator=(const SystemLogCapture&) = delete;
    ~SystemLogCapture() { qInstallMessageHandler(previous_); }

    /// The lines since the last call.
    [[nodiscard]] QStringList take() {
        QStringList lines = QString::fromUtf8(contentOf(file_)).split(QLatin1Char('\n'));
        lines.removeLast();
        QFile::remove(file_);
        return lines;
    }

  private:
    static void append(QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (qstrcmp(context.category, "quazel.page") != 0) {
            previous_(type, context, message);
            return;
        }
        QFile file(file_);
        if (!file.open(QIODevice::Append) || file.write(message.toUtf8() + '\n') < 0) {
            std::abort();
        }
    }

    static inline QString file_;
    static inline QtMessageHandler previous_ = nullptr;
    QTemporaryDir folder_;
};

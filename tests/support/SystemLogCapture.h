// What the page writes to the system log, read back.

#pragma once

#include <QStringList>

#include <utility>

/// Catches the lines of the category "quazel.page" as long as it lives. One at a time, made after the test
/// has begun, as Qt Test has a handler of its own.
class SystemLogCapture {
  public:
    SystemLogCapture() { previous_ = qInstallMessageHandler(append); }
    SystemLogCapture(const SystemLogCapture&) = delete;
    SystemLogCapture& operator=(const SystemLogCapture&) = delete;
    ~SystemLogCapture() { qInstallMessageHandler(previous_); }

    /// The lines since the last call.
    [[nodiscard]] QStringList take() { return std::exchange(lines_, {}); }

  private:
    static void append(QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (qstrcmp(context.category, "quazel.page") == 0) {
            lines_ += message.split(QLatin1Char('\n'));
        } else {
            previous_(type, context, message);
        }
    }

    static inline QStringList lines_;
    static inline QtMessageHandler previous_ = nullptr;
};

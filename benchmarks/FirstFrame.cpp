// Linked into a program that shows a window: at the first frame that the window system has, writes the
// milliseconds since QUAZEL_BENCH_START (nanoseconds of the monotonic clock) and the peak of the resident
// memory in KiB to the file QUAZEL_BENCH_FILE, and ends the process. The program's own code does not know.

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>
#include <QWidget>

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

qint64 now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

long peakKibibytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
            if (line.startsWith("VmHWM:")) {
                return std::atol(line.constData() + std::strlen("VmHWM:"));
            }
        }
    }
    return 0;
}

[[noreturn]] void report() {
    QGuiApplication::sync();  // Comes back once the window system has worked off what it was sent.
    const double milliseconds = static_cast<double>(now() - qgetenv("QUAZEL_BENCH_START").toLongLong()) / 1e6;
    std::FILE* const file = std::fopen(qgetenv("QUAZEL_BENCH_FILE").constData(), "w");
    const bool written = file != nullptr &&
                         std::fprintf(file, "[%.3f, %ld]\n", milliseconds, peakKibibytes()) > 0 &&
                         std::fclose(file) == 0;
    ::_exit(written ? 0 : 1);
}

class FirstFrame : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* const widget = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
            qApp->removeEventFilter(this);
            // The window's children are painted and the frame is sent before the event loop comes round
            // again.
            QTimer::singleShot(0, this, report);
        }
        return false;
    }
};

void watchForFirstFrame() {
    qApp->installEventFilter(new FirstFrame(qApp));
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(watchForFirstFrame)

#include "platform/MainThreadGate.h"

#include <QMetaObject>

bool MainThreadGate::runAndWait(const std::function<void()>& task) {
    std::unique_lock lock(mutex_);
    if (!receiver_) {
        return false;
    }
    bool hasRun = false;
    pending_ = [&] {
        task();
        hasRun = true;
    };
    // Posted under the lock, so that close() can't destroy the receiver in between.
    QMetaObject::invokeMethod(
        receiver_.get(), [this] { runPending(); }, Qt::QueuedConnection);
    changed_.wait(lock, [this] { return !pending_; });
    return hasRun;
}

/// Holds the lock while the task runs; the only other thread that uses the gate is waiting for it.
void MainThreadGate::runPending() {
    const std::lock_guard lock(mutex_);
    pending_();
    pending_ = nullptr;
    changed_.notify_all();
}

void MainThreadGate::close() {
    const std::lock_guard lock(mutex_);
    receiver_.reset();  // Also drops its queued events.
    pending_ = nullptr;
    changed_.notify_all();
}

#include "platform/MainThreadGate.h"

#include <QMetaObject>
#include <QObject>

MainThreadGate::MainThreadGate() : doorbell_(std::make_unique<QObject>()) {}

MainThreadGate::~MainThreadGate() {
    close();
}

bool MainThreadGate::runAndWait(const std::function<void()>& task) {
    std::unique_lock lock(mutex_);
    if (!doorbell_) {
        return false;
    }
    bool hasRun = false;
    pending_ = [&] {
        task();
        hasRun = true;
    };
    // Posted under the lock, so that close() can't destroy the doorbell in between.
    QMetaObject::invokeMethod(
        doorbell_.get(), [this] { runPending(); }, Qt::QueuedConnection);
    changed_.wait(lock, [this] { return !pending_; });
    return hasRun;
}

/// Keeps the lock meanwhile; the only thread that could want it waits for this.
void MainThreadGate::runPending() {
    const std::lock_guard lock(mutex_);
    pending_();
    pending_ = nullptr;
    changed_.notify_all();
}

void MainThreadGate::close() {
    const std::lock_guard lock(mutex_);
    doorbell_.reset();  // Drops its queued events, too.
    pending_ = nullptr;
    changed_.notify_all();
}

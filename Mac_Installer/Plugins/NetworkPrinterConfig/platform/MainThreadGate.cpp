#include "platform/MainThreadGate.h"

#include <QMetaObject>
#include <QObject>

#include <utility>

MainThreadGate::MainThreadGate() : doorbell_(std::make_unique<QObject>()) {}

MainThreadGate::~MainThreadGate() {
    close();
}

bool MainThreadGate::runAndWait(const std::function<void()>& task) {
    std::unique_lock lock(mutex_);
    if (closed_) {
        return false;
    }
    pending_ = &task;
    state_ = Task::Waiting;
    // Posted under the lock, so that close() can't destroy the doorbell in between.
    QMetaObject::invokeMethod(
        doorbell_.get(), [this] { runPending(); }, Qt::QueuedConnection);
    changed_.wait(lock, [this] { return state_ == Task::Done || (closed_ && state_ == Task::Waiting); });
    pending_ = nullptr;
    return std::exchange(state_, Task::None) == Task::Done;
}

void MainThreadGate::runPending() {
    std::unique_lock lock(mutex_);
    if (closed_ || state_ != Task::Waiting) {
        return;
    }
    state_ = Task::Running;
    const std::function<void()>* const task = pending_;
    lock.unlock();
    (*task)();
    lock.lock();
    state_ = Task::Done;
    changed_.notify_all();
}

void MainThreadGate::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    // Also drops its queued events.
    doorbell_.reset();
    changed_.notify_all();
}

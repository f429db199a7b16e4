// Lets a background thread run tasks on the main thread and wait for them. Once the gate is closed, no task
// is run and no caller waits.
//
// The task is passed under the gate's own lock; the event queue only wakes the main thread.
// Qt::BlockingQueuedConnection is unsuitable: it deadlocks if the main thread waits for the background
// thread, and it reports success if the receiver is destroyed meanwhile.

#pragma once

#include <QObject>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

/// Constructed on the main thread.
class MainThreadGate {
  public:
    MainThreadGate() = default;
    MainThreadGate(const MainThreadGate&) = delete;
    MainThreadGate& operator=(const MainThreadGate&) = delete;
    ~MainThreadGate() { close(); }

    /// Runs `task` on the main thread and returns true once it has finished. Returns false if the gate is
    /// closed, or gets closed before the task starts; the task is then never run. One background thread at a
    /// time; never the main thread. `task` must not throw.
    [[nodiscard]] bool runAndWait(const std::function<void()>& task);

    /// Main thread, but not from within a task. Returns at once; a waiting thread's runAndWait returns false.
    void close();

  private:
    void runPending();

    // All guarded by mutex_.
    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> pending_;                                    // empty: no thread waits
    std::unique_ptr<QObject> receiver_ = std::make_unique<QObject>();  // on the main thread; null once closed
};

// The way from a background thread to the controls: the thread hands a task to the main thread and waits
// until it has run. The gate is closed when what the tasks work on goes away; from then on nothing is run,
// and nobody waits.
//
// The task travels under the gate's own lock; the event queue only wakes the main thread.
// Qt::BlockingQueuedConnection would not do: a main thread that waits for the background thread would wait
// for ever, and a receiver that dies in between counts as success.

#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

class QObject;

class MainThreadGate {
  public:
    /// Main thread, with a QCoreApplication.
    MainThreadGate();
    MainThreadGate(const MainThreadGate&) = delete;
    MainThreadGate& operator=(const MainThreadGate&) = delete;
    ~MainThreadGate();

    /// Runs `task` on the main thread and returns true once it has run. Returns false, without running it now
    /// or later, when the gate is closed or is closed while waiting. One background thread at a time; never
    /// the main thread. `task` must not throw.
    [[nodiscard]] bool runAndWait(const std::function<void()>& task);

    /// Main thread, but not from within a task. Returns at once; a waiting thread wakes and is told that its
    /// task did not run.
    void close();

  private:
    void runPending();

    std::mutex mutex_;
    std::condition_variable changed_;
    const std::function<void()>* pending_ = nullptr;  // guarded by mutex_, owned by the waiting thread
    enum class Task { None, Waiting, Running, Done } state_ = Task::None;  // guarded by mutex_
    bool closed_ = false;                                                  // guarded by mutex_
    std::unique_ptr<QObject> doorbell_;  // lives on the main thread; guarded by mutex_ against close()
};

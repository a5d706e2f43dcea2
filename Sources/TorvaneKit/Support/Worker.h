#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace torvane {

/// One thread that runs jobs in the order in which they were handed over, made for the first of them. While there is
/// none it sleeps, and a job costs it one wakeup: QThreadPool wakes its thread while it still holds the lock that the
/// thread needs first, so that it falls asleep again, twice on some machines.
class Worker final {
public:
    Worker() = default;

    /// Runs what has been handed over, then ends the thread.
    ~Worker();

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Never blocks. A job deals with its own failures: it must not throw.
    void start(std::function<void()> job);

    /// Waits until every job has ended that has been handed over.
    void waitForDone();

private:
    void run();

    std::mutex m_mutex; // Guards what follows.
    std::deque<std::function<void()>> m_jobs;
    bool m_isRunningJob = false;
    bool m_isEnding = false;
    std::condition_variable m_hasWork;
    std::condition_variable m_isIdle;
    std::thread m_thread;
};

/// The one background thread: decoding and durable writing run here, in the order in which they were handed over.
/// Everything that changes state stays on the main thread.
Worker& worker();

} // namespace torvane

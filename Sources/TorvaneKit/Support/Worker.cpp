#include "Support/Worker.h"

#include <QCoreApplication>

#include <pthread.h>
#include <utility>

namespace torvane {

Worker::~Worker() {
    std::unique_lock lock(m_mutex);
    m_isEnding = true;
    lock.unlock();
    m_hasWork.notify_one();
    if (m_thread.joinable())
        m_thread.join();
}

void Worker::start(std::function<void()> job) {
    std::unique_lock lock(m_mutex);
    m_jobs.push_back(std::move(job));
    if (!m_thread.joinable())
        m_thread = std::thread(&Worker::run, this);
    lock.unlock(); // First: a thread that is woken only to wait for the lock sleeps and wakes once more.
    m_hasWork.notify_one();
}

void Worker::waitForDone() {
    std::unique_lock lock(m_mutex);
    m_isIdle.wait(lock, [this] { return m_jobs.empty() && !m_isRunningJob; });
}

void Worker::run() {
    pthread_setname_np(pthread_self(), "Worker");
    std::unique_lock lock(m_mutex);
    while (true) {
        m_hasWork.wait(lock, [this] { return !m_jobs.empty() || m_isEnding; });
        if (m_jobs.empty())
            return;
        std::function<void()> job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_isRunningJob = true;
        lock.unlock();
        job();
        job = nullptr; // What it holds goes with it, before it counts as done.
        lock.lock();
        m_isRunningJob = false;
        if (m_jobs.empty())
            m_isIdle.notify_all();
    }
}

Worker& worker() {
    static Worker thread;
    // Before the application object goes: results are delivered through it, and no write may be lost.
    [[maybe_unused]] static const bool isAwaited = [] {
        qAddPostRoutine([] { worker().waitForDone(); });
        return true;
    }();
    return thread;
}

} // namespace torvane

#pragma once

#include <QHash>
#include <QString>

/// Voluntary context switches of a process since this was made, by its threads: how often each went to sleep, and so
/// was woken. Threads that end take their counts with them, so that it has to look again every now and then.
class ThreadSwitches final {
public:
    /// Counts from now on.
    explicit ThreadSwitches(qint64 process);

    /// Looks at all threads that there are.
    void update();

    double ofMainThread() const { return static_cast<double>(m_threads.value(m_process).total()); }
    double ofAllThreads() const;
    qsizetype threads() const { return m_threads.size(); }

private:
    struct Count {
        qint64 first = 0;
        qint64 last = 0;

        qint64 total() const { return last - first; }
    };

    qint64 m_process;
    QHash<qint64, Count> m_threads;
};

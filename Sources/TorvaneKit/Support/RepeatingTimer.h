#pragma once

#include <QDateTime>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace torvane {

/// A repeating timer on the thread's loop that lets the system batch its wakeups within a tolerance.
/// It first fires after one interval. Destroying it stops it, and so does destroying its owner.
class RepeatingTimer final {
public:
    /// Intervals and tolerances are in seconds. An interval that no timer can hold is clamped: to a millisecond where
    /// it is shorter, zero, negative or not a number, to the longest that a timer holds (24.8 days) where it is longer.
    RepeatingTimer(QObject* owner, double interval, double tolerance, std::function<void()> action);
    ~RepeatingTimer();

    /// Fires at once when by the time of day a whole interval has passed since it last fired or began, and begins the
    /// next interval then: a machine that sleeps holds up the timer, but not the time of day.
    void fireIfOverdue();

    /// What it fired for came to nothing: it is overdue from now until it fires again, at its usual time or before.
    void remainDue() { m_isDue = true; }

    RepeatingTimer(const RepeatingTimer&) = delete;
    RepeatingTimer& operator=(const RepeatingTimer&) = delete;

private:
    void fire();

    QPointer<QTimer> m_timer; // The owner's child.
    const std::function<void()> m_action;
    QDateTime m_lastFired; // Or when it began.
    bool m_isDue = false;
};

} // namespace torvane

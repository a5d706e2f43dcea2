#pragma once

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

    RepeatingTimer(const RepeatingTimer&) = delete;
    RepeatingTimer& operator=(const RepeatingTimer&) = delete;

private:
    QPointer<QTimer> m_timer; // The owner's child.
};

} // namespace torvane

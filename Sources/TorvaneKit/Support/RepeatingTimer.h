#pragma once

#include <QTimer>

#include <functional>

namespace torvane {

/// A repeating timer on the thread's loop that lets the system batch its wakeups within a tolerance.
/// It first fires after one interval. Destroying it stops it.
class RepeatingTimer final {
public:
    /// Intervals and tolerances are in seconds. An interval that no timer can hold is clamped: to a millisecond where
    /// it is shorter, zero, negative or not a number, to the longest that a timer holds (24.8 days) where it is longer.
    RepeatingTimer(double interval, double tolerance, std::function<void()> action);

    double interval() const;

private:
    QTimer m_timer;
};

} // namespace torvane

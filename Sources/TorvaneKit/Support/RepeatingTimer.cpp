#include "Support/RepeatingTimer.h"

#include "Support/Clock.h"

#include <chrono>
#include <cmath>
#include <limits>

namespace torvane {

namespace {

constexpr double shortestMs = 1;
constexpr double longestMs = std::numeric_limits<int>::max();

std::chrono::milliseconds timerInterval(double seconds) {
    const double ms = seconds * 1000;
    if (!(ms > shortestMs)) // NaN too
        return std::chrono::milliseconds(1);
    return std::chrono::milliseconds(ms < longestMs ? std::lround(ms) : std::numeric_limits<int>::max());
}

/// A coarse timer moves by at most 5 % of its interval, a very coarse one to whole seconds: the widest that stays
/// within the tolerance is taken.
Qt::TimerType timerType(double interval, double tolerance) {
    if (tolerance >= 1 && interval >= 20)
        return Qt::VeryCoarseTimer;
    return tolerance >= interval * 0.05 ? Qt::CoarseTimer : Qt::PreciseTimer;
}

} // namespace

RepeatingTimer::RepeatingTimer(QObject* owner, double interval, double tolerance, std::function<void()> action)
    : m_timer(new QTimer(owner))
    , m_action(std::move(action))
    , m_lastFired(Clock::now()) {
    m_timer->setInterval(timerInterval(interval));
    m_timer->setTimerType(timerType(interval, tolerance));
    QObject::connect(m_timer, &QTimer::timeout, m_timer, [this] { fire(); });
    m_timer->start();
}

RepeatingTimer::~RepeatingTimer() {
    delete m_timer;
}

void RepeatingTimer::fireIfOverdue() {
    if (!m_timer || (!m_isDue && m_lastFired.msecsTo(Clock::now()) < m_timer->interval()))
        return;
    m_timer->start();
    fire();
}

void RepeatingTimer::fire() {
    m_lastFired = Clock::now();
    m_isDue = false;
    const std::function<void()> action = m_action; // It may destroy this timer.
    action();
}

} // namespace torvane

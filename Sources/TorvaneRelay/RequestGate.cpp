#include "RequestGate.h"

#include <QPointer>

#include <chrono>

namespace torvane {

RequestGate::RequestGate(const Limits& limits)
    : m_limits(limits) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &RequestGate::admit);
}

/// The first of those who wait that may come in now; none while all must wait on.
RequestGate::Place* RequestGate::nextAdmissible() {
    if (m_inside >= m_limits.atOnce)
        return nullptr;
    for (Place* place : m_waiting) {
        const Host& host = m_hosts[place->m_host];
        if (host.inside < m_limits.atOncePerHost && host.pause.hasExpired())
            return place;
    }
    return nullptr;
}

void RequestGate::admit() {
    const auto pause = std::chrono::nanoseconds(static_cast<qint64>(1e9 / m_limits.perSecondPerHost));
    const QPointer<RequestGate> self(this);
    while (Place* place = nextAdmissible()) {
        m_waiting.removeOne(place);
        Host& host = m_hosts[place->m_host];
        host.pause = QDeadlineTimer(pause, Qt::PreciseTimer);
        ++host.inside;
        ++m_inside;
        ++m_admitted;
        place->m_isInside = true;
        place->m_task->run(); // May add and remove places, and end the run that owns the gate.
        if (!self)
            return;
    }
    for (const Place* place : m_waiting)
        armFor(m_hosts[place->m_host]);
}

/// Comes back when the host's pause is over, also if it ended just now: nobody else might. Where there is no room,
/// whoever leaves calls.
void RequestGate::armFor(const Host& host) {
    if (m_inside >= m_limits.atOnce || host.inside >= m_limits.atOncePerHost)
        return;
    const int remaining = static_cast<int>(host.pause.remainingTime()) + 1; // Rounded down, it would wake too early.
    if (!m_timer.isActive() || m_timer.remainingTime() > remaining)
        m_timer.start(remaining);
}

void RequestGate::leave(const QString& host) {
    --m_hosts[host].inside;
    --m_inside;
    m_timer.start(0);
}

RequestGate::Place::Place(RequestGate& gate, const QString& host)
    : m_gate(gate)
    , m_host(host) {}

RequestGate::Place::~Place() {
    if (m_isInside)
        m_gate.leave(m_host);
    else
        m_gate.m_waiting.removeOne(this);
}

void RequestGate::Place::await_suspend(detail::Suspended awaiting) {
    m_task = awaiting.task;
    m_gate.m_waiting.append(this);
    m_gate.m_timer.start(0); // Resumed from the loop, never from here.
}

} // namespace torvane

#pragma once

#include <QDateTime>

/// The time of day. Whatever decides by the time asks here, so that a test can set it.
namespace torvane::Clock {

/// The current time in UTC. Safe to call from any thread.
QDateTime now();

using Source = QDateTime (*)();

/// Replaces the source of the time; none restores the system's clock.
void setSource(Source source);

} // namespace torvane::Clock

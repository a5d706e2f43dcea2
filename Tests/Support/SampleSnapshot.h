#pragma once

#include "Model/Snapshot.h"

namespace torvane::SampleSnapshot {

/// A market at a busy hour, with figures of every kind: six Layer 2 networks, one in each state, one without figures.
Snapshot busyHour();

/// `count` networks with figures and histories.
QList<L2Entry> networks(qsizetype count);

/// A series of this length around a middle, the same each time.
QList<double> walk(qsizetype count, double middle, double step, unsigned seed = 7);

} // namespace torvane::SampleSnapshot

#pragma once

#include "Model/Snapshot.h"

#include <QDateTime>

/// A made-up market for tests and the demo: Ethereum and nine Layer 2 networks with figures that move smoothly.
namespace torvane::SimulatedMarket {

/// The relay's document as of a time. A pure function of the time: the histories of a later document hold the figures
/// of the earlier ones. Every provenance says that the figures are simulated.
Snapshot at(const QDateTime& time);

} // namespace torvane::SimulatedMarket

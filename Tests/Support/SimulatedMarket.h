#pragma once

#include "Model/Snapshot.h"

#include <QDateTime>

#include <optional>

/// A made-up market for tests and the demo: Ethereum and nine Layer 2 networks with figures that move smoothly.
namespace torvane::SimulatedMarket {

/// The relay's document as of a time. A pure function of the time: the histories of a later document hold the figures
/// of the earlier ones. Every provenance says that the figures are simulated.
Snapshot at(const QDateTime& time);

/// Ethereum's base fee in gwei: the same figure as in the document of that time, without the rest of it.
double baseFee(const QDateTime& time);

/// The priority fee, in parts of the base fee, that this percentile (0 to 100) of a block's gas pays at most. The tiers
/// of the document are those of 15, 50 and 90.
double priorityFeeShare(double percentile);

/// A network's gas price in gwei, as in the document of that time; none where no such network's nodes can be asked.
std::optional<double> gasPrice(const QString& network, const QDateTime& time);

} // namespace torvane::SimulatedMarket

#pragma once

#include "Chain/LiveQuotes.h"
#include "Nodes.h"

#include <QList>

namespace torvane {

/// What gas on Ethereum costs now, as velisk itself reads it. Throws as Nodes::ask does.
Task<LiveGasQuote> readGas(Nodes& nodes);

/// Base fees as means of fifty blocks in gwei, oldest first.
struct BaseFeeHistory {
    QList<double> points;
    bool isWhole = false; ///< a day's, or all of a chain that is younger
};

/// The base fees of the 7200 blocks up to this one, a day's. Nodes give about a thousand blocks for one question, or
/// fewer. When they fail on the way, what is there.
Task<BaseFeeHistory> readBaseFeeHistory(Nodes& nodes, quint64 newestBlock);

} // namespace torvane

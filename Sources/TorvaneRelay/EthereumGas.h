#pragma once

#include "Chain/LiveQuotes.h"
#include "Nodes.h"

#include <QList>

namespace torvane {

/// What gas on Ethereum costs now, as velisk itself reads it. Throws as Nodes::ask does.
Task<LiveGasQuote> readGas(Nodes& nodes);

/// The base fees of the 7200 blocks up to this one, a day's, as means of fifty blocks in gwei, oldest first. Nodes give
/// about a thousand blocks for one question, or fewer. When they fail on the way, or the chain is younger, what is
/// there.
Task<QList<double>> readBaseFeeHistory(Nodes& nodes, quint64 newestBlock);

} // namespace torvane

#pragma once

#include "Chain/LiveQuotes.h"
#include "Model/AppSettings.h"

#include <QDateTime>

#include <optional>

namespace torvane {

/// Seconds between two live polls. "Per block" follows the chain: twelve seconds on Ethereum, the network's block time
/// on a Layer 2, but never less than five.
double livePollInterval(LiveGasCadence cadence, LiveChain chain, std::optional<double> l2BlockTimeSec);

/// Whether a quote still counts: not from the future, and no older than three polls or a minute, whichever is longer.
bool isLiveQuoteFresh(const QDateTime& fetchedAt, const QDateTime& now, double pollInterval);

} // namespace torvane

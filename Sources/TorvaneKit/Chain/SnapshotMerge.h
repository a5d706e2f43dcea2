#pragma once

#include "Chain/LiveQuotes.h"
#include "Model/Snapshot.h"

#include <QList>

#include <optional>

namespace torvane {

/// Lays live quotes over the relay's snapshot: Ethereum's four gas prices and the two dollar costs that follow from
/// them, and the gas price of each Layer 2 network that has a quote (the first of that name). All else is the relay's,
/// in its order, histories shared and not copied. Quotes are taken as they come: which are fresh is decided before.
Snapshot mergeSnapshot(const Snapshot& relay, const std::optional<LiveGasQuote>& ethereum,
                       const QList<LiveL2Quote>& l2);

} // namespace torvane

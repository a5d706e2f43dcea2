#pragma once

#include "Model/Snapshot.h"
#include "Questions.h"
#include "RelayTable.h"

namespace torvane {

/// One protocol's supply and rate, as far as they can be read; its provenance tells how far that is.
Task<LiquidStakingProtocol> readProtocol(ChainAtBlock chain, RelayTable::Staking row);

/// All protocols with their sum.
LiquidStakingData liquidStaking(const QList<LiquidStakingProtocol>& protocols, const QString& block);

} // namespace torvane

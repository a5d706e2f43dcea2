#pragma once

#include "NetworkRow.h"

#include <optional>

namespace torvane {

/// When a block was made.
struct BlockTime {
    quint64 number;
    quint64 seconds; ///< since 1970
};

/// The mean between two blocks; none where the later one is not later.
std::optional<double> secondsPerBlock(const BlockTime& latest, const BlockTime& earlier);

/// Starknet's row: the price of a unit of L2 gas in gwei (Starknet's JSON-RPC specification, from 0.8). No cost: fees
/// are paid in another coin; and no endpoints: velisk would ask them questions of Ethereum's. Never throws.
Task<NetworkReading> readStarknet(RequestGate& gate, RelayTable::Network network);

} // namespace torvane

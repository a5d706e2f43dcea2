#pragma once

#include "NetworkRow.h"

namespace torvane {

/// Starknet's row: the price of a unit of L2 gas in gwei (Starknet's JSON-RPC specification, from 0.8). No cost: fees
/// are paid in another coin; and no endpoints: velisk would ask them questions of Ethereum's. Never throws.
Task<NetworkReading> readStarknet(RequestGate& gate, RelayTable::Network network);

} // namespace torvane

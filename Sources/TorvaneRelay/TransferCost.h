#pragma once

#include "Nodes.h"
#include "RelayTable.h"

namespace torvane {

/// What a plain transfer costs on a network, in ether: gas there and, on rollups, the transaction's share of what is
/// posted to Ethereum. Throws as Nodes::ask does.
Task<double> readTransferCost(Nodes& nodes, RelayTable::Network network, quint64 gasPriceWei);

/// A plain transfer as it is before it is signed (EIP-2718, EIP-1559): fee oracles price its bytes.
QByteArray unsignedTransfer(quint64 chainId, quint64 gasPriceWei);

} // namespace torvane

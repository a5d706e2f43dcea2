#pragma once

#include "Chain/LiveQuotes.h"
#include "EtherPrice.h"
#include "EthereumGas.h"
#include "Model/Snapshot.h"
#include "NetworkRow.h"
#include "RelayTable.h"

#include <QDateTime>

#include <optional>

namespace torvane {

/// All that one run learns. What is missing could not be read; `trouble` tells why the first required figure is
/// missing.
struct Reading {
    quint64 block = 0; ///< Ethereum's, at which its contracts are asked
    std::optional<EtherPrice> price;
    std::optional<double> poolPrice;
    std::optional<LiveGasQuote> gas;
    BaseFeeHistory baseFeeHistory;
    QList<LiquidStakingProtocol> protocols;
    QList<NetworkReading> networks; ///< in the table's order
    QString trouble;
};

/// Asks all that the table names, at once, as fast as the gate lets through. Never throws.
Task<Reading> readAll(RequestGate& gate, RelayTable table, QDateTime now);

} // namespace torvane

#pragma once

#include "Nodes.h"
#include "RelayTable.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace torvane {

/// What a network's nodes say of it in one run. What they do not say is missing, and `trouble` tells why.
struct NetworkReading {
    std::optional<double> priceGwei;
    std::optional<double> transferEther;
    std::optional<double> blockSeconds;
    QStringList endpoints; ///< that answered, and that velisk may ask itself
    QString trouble;
};

/// Reads a network's row. Never throws: one network's failure is its own.
Task<NetworkReading> readNetwork(RequestGate& gate, RelayTable::Network network);

} // namespace torvane

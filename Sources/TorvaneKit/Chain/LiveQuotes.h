#pragma once

#include <QString>
#include <QtGlobal>

namespace torvane {

/// One live reading of Ethereum's gas market; prices in gwei, unrounded.
struct LiveGasQuote {
    double baseFee; // Of the block `blockNumber`.
    double low;     // Base fee plus the typical priority fee of this tier.
    double avg;
    double high;
    quint64 blockNumber; // The newest block that the reading covers.

    bool operator==(const LiveGasQuote&) const = default;
};

/// One live reading of a Layer 2 network's gas price, in gwei.
struct LiveL2Quote {
    QString name;
    double gasPriceGwei;

    bool operator==(const LiveL2Quote&) const = default;
};

/// Which live feed a poll concerns.
enum class LiveChain { ethereum, l2 };

} // namespace torvane

#include "Chain/SnapshotMerge.h"

#include "Model/Format.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr double swapGas = 150000;

/// None where either price makes no sense: better no cost than the relay's, which belongs to another base fee.
std::optional<double> costUsd(double ethPrice, double baseFee, double gas) {
    if (!(baseFee > 0) || !(ethPrice > 0))
        return std::nullopt;
    return ethPrice * (baseFee * gas * 0.000000001);
}

GasData merged(GasData gas, const LiveGasQuote& live, double ethPrice) {
    gas.baseFee = live.baseFee;
    gas.low = live.low;
    gas.avg = live.avg;
    gas.high = live.high;
    gas.feeTransferUsd = costUsd(ethPrice, live.baseFee, Format::transferGas);
    gas.feeSwapUsd = costUsd(ethPrice, live.baseFee, swapGas);
    return gas;
}

/// The first quote for the network of this name.
const LiveL2Quote* quoteFor(const QString& name, const QList<LiveL2Quote>& quotes) {
    const auto found =
        std::find_if(quotes.cbegin(), quotes.cend(), [&name](const LiveL2Quote& quote) { return quote.name == name; });
    return found == quotes.cend() ? nullptr : &*found;
}

} // namespace

Snapshot mergeSnapshot(const Snapshot& relay, const std::optional<LiveGasQuote>& ethereum,
                       const QList<LiveL2Quote>& l2) {
    Snapshot result = relay;
    if (ethereum)
        result.gas = merged(relay.gas, *ethereum, relay.price.eth);
    if (l2.isEmpty())
        return result;
    for (qsizetype i = 0; i < relay.l2.size(); ++i) {
        // Only the first match makes the list a copy of its own; the histories inside stay shared even then.
        if (const LiveL2Quote* quote = quoteFor(relay.l2[i].name, l2))
            result.l2[i].costGwei = quote->gasPriceGwei;
    }
    return result;
}

} // namespace torvane

#include "Chain/SnapshotMerge.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr double transferGas = 21000;
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
    gas.feeTransferUsd = costUsd(ethPrice, live.baseFee, transferGas);
    gas.feeSwapUsd = costUsd(ethPrice, live.baseFee, swapGas);
    return gas;
}

} // namespace

Snapshot mergeSnapshot(const Snapshot& relay, const std::optional<LiveGasQuote>& ethereum,
                       const QList<LiveL2Quote>& l2) {
    Snapshot result = relay;
    if (ethereum)
        result.gas = merged(relay.gas, *ethereum, relay.price.eth);
    if (l2.isEmpty())
        return result; // The list stays shared with the relay's.
    for (L2Entry& entry : result.l2) {
        const auto quote =
            std::find_if(l2.cbegin(), l2.cend(), [&entry](const LiveL2Quote& each) { return each.name == entry.name; });
        if (quote != l2.cend())
            entry.costGwei = quote->gasPriceGwei;
    }
    return result;
}

} // namespace torvane

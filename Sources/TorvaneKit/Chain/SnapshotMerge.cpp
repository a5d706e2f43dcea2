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

/// The first quote for the network of this name. Views, since Qt 6.4 compares two QString for their order, not for
/// equality alone.
const LiveL2Quote* quoteFor(QStringView name, const QList<LiveL2Quote>& quotes) {
    const auto found = std::find_if(quotes.cbegin(), quotes.cend(),
                                    [name](const LiveL2Quote& quote) { return QStringView(quote.name) == name; });
    return found == quotes.cend() ? nullptr : &*found;
}

/// The list is copied while it is searched, though nothing may be found: the names of many networks lie on as many
/// pages of memory, and to visit these once more takes longer. The histories inside stay shared.
QList<L2Entry> merged(const QList<L2Entry>& networks, const QList<LiveL2Quote>& quotes) {
    QList<L2Entry> result;
    result.reserve(networks.size());
    bool isChanged = false;
    for (const L2Entry& network : networks) {
        L2Entry& copy = result.emplaceBack(network);
        const LiveL2Quote* quote = quoteFor(network.name, quotes);
        if (!quote)
            continue;
        copy.costGwei = quote->gasPriceGwei;
        isChanged = true;
    }
    return isChanged ? result : networks;
}

} // namespace

Snapshot mergeSnapshot(const Snapshot& relay, const std::optional<LiveGasQuote>& ethereum,
                       const QList<LiveL2Quote>& l2) {
    Snapshot result = relay;
    if (ethereum)
        result.gas = merged(relay.gas, *ethereum, relay.price.eth);
    if (!l2.isEmpty())
        result.l2 = merged(relay.l2, l2);
    return result;
}

} // namespace torvane

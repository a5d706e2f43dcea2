#include "Model/ChartHistory.h"

namespace torvane::Format {

namespace {

const QString gweiUnit = QStringLiteral("gwei");

} // namespace

std::optional<ChartHistory> chartHistory(const BadgeChain& chain, const std::optional<GasData>& gas,
                                         const QList<L2Entry>& l2) {
    if (chain.isEthereum()) {
        if (!gas || gas->history.isEmpty())
            return std::nullopt;
        return ChartHistory{baseFeeHeading, gas->history, gweiUnit};
    }
    const L2Entry* entry = findL2(chain.title(), l2);
    // One value is a chart for Ethereum but not here: a network's series has only begun when there are two.
    if (!entry || !entry->history || entry->history->size() < 2)
        return std::nullopt;
    return ChartHistory{entry->name.toUpper() + QStringLiteral(" GAS"), *entry->history, gweiUnit};
}

} // namespace torvane::Format

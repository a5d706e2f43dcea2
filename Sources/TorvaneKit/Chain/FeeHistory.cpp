#include "Chain/FeeHistory.h"

#include <algorithm>
#include <limits>

namespace torvane {

namespace {

constexpr qsizetype tiers = 3;

void checkShape(const FeeHistoryResponse& history) {
    const qsizetype blocks = history.gasUsedRatio.size();
    if (history.baseFeePerGas.size() < 2 || history.baseFeePerGas.size() != blocks + 1)
        throw FeeHistoryFailure(FeeHistoryFailure::Case::invalidLengths);
    const auto isShort = [](const QList<HexQuantity>& row) { return row.size() < tiers; };
    if (history.reward.size() != blocks || std::any_of(history.reward.cbegin(), history.reward.cend(), isShort))
        throw FeeHistoryFailure(FeeHistoryFailure::Case::invalidReward);
}

/// The upper median over the blocks of one percentile's priority fees, in gwei.
double typicalPriorityFee(const QList<QList<HexQuantity>>& reward, qsizetype percentile) {
    QList<double> fees;
    fees.reserve(reward.size());
    for (const QList<HexQuantity>& row : reward)
        fees.append(row[percentile].gwei());
    const auto middle = fees.begin() + fees.size() / 2;
    std::nth_element(fees.begin(), middle, fees.end());
    return *middle;
}

/// How many blocks the newest one is after the oldest.
quint64 blocksAfterOldest(const FeeHistoryResponse& history) {
    return static_cast<quint64>(std::max<qsizetype>(1, history.gasUsedRatio.size()) - 1);
}

} // namespace

bool hasBlockNumbers(const FeeHistoryResponse& history) {
    return history.oldestBlock.value <= std::numeric_limits<quint64>::max() - blocksAfterOldest(history);
}

LiveGasQuote deriveLive(const FeeHistoryResponse& from) {
    checkShape(from);
    if (!hasBlockNumbers(from))
        qFatal("A fee history goes beyond the last block number");
    // The last entry is the node's forecast for the next block; the one before belongs to the newest block.
    const double baseFee = from.baseFeePerGas[from.baseFeePerGas.size() - 2].gwei();
    return {baseFee, baseFee + typicalPriorityFee(from.reward, 0), baseFee + typicalPriorityFee(from.reward, 1),
            baseFee + typicalPriorityFee(from.reward, 2), from.oldestBlock.value + blocksAfterOldest(from)};
}

} // namespace torvane

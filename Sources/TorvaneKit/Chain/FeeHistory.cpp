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

quint64 newestBlock(const FeeHistoryResponse& history) {
    const auto further = static_cast<quint64>(history.gasUsedRatio.size() - 1);
    if (history.oldestBlock.value > std::numeric_limits<quint64>::max() - further)
        throw FeeHistoryFailure(FeeHistoryFailure::Case::invalidBlockNumber);
    return history.oldestBlock.value + further;
}

} // namespace

const char* FeeHistoryFailure::what() const noexcept {
    switch (m_case) {
    case Case::invalidLengths:
        return "Fee history with lists of lengths that do not fit";
    case Case::invalidReward:
        return "Fee history with missing priority fees";
    case Case::invalidBlockNumber:
        return "Fee history beyond the last block number";
    }
    Q_UNREACHABLE();
}

LiveGasQuote deriveLive(const FeeHistoryResponse& from) {
    checkShape(from);
    // The last entry is the node's forecast for the next block; the one before belongs to the newest block.
    const double baseFee = from.baseFeePerGas[from.baseFeePerGas.size() - 2].gwei();
    return {baseFee, baseFee + typicalPriorityFee(from.reward, 0), baseFee + typicalPriorityFee(from.reward, 1),
            baseFee + typicalPriorityFee(from.reward, 2), newestBlock(from)};
}

} // namespace torvane

#pragma once

#include "Chain/JSONRPC.h"
#include "Chain/LiveQuotes.h"

#include <QList>

#include <exception>

namespace torvane {

/// The parameters of eth_feeHistory, newest block "latest": a positional array of block count, block and percentiles.
struct FeeHistoryParams {
    quint64 blockCount;
    QList<double> rewardPercentiles;

    auto elements() const { return std::tuple{HexQuantity{blockCount}, QStringLiteral("latest"), rewardPercentiles}; }
};

/// The answer of eth_feeHistory: prices in wei, one base fee more than blocks (the forecast for the next), one row of
/// priority fees per block with one entry per requested percentile.
struct FeeHistoryResponse {
    HexQuantity oldestBlock;
    QList<HexQuantity> baseFeePerGas;
    QList<double> gasUsedRatio;
    QList<QList<HexQuantity>> reward;
    static constexpr std::tuple keys{
        Key{"oldestBlock", &FeeHistoryResponse::oldestBlock},
        Key{"baseFeePerGas", &FeeHistoryResponse::baseFeePerGas},
        Key{"gasUsedRatio", &FeeHistoryResponse::gasUsedRatio},
        Key{"reward", &FeeHistoryResponse::reward},
    };
};

/// A fee history whose lists do not fit together, or whose last block's number no 64 bits can hold.
class FeeHistoryFailure final : public std::exception {
public:
    enum class Case { invalidLengths, invalidReward, invalidBlockNumber };

    explicit FeeHistoryFailure(Case which)
        : m_case(which) {}

    Case which() const { return m_case; }

    const char* what() const noexcept override;

private:
    Case m_case;
};

/// The live reading that a fee history gives: the newest block's base fee, and on top of it, per percentile, the median
/// over the blocks of what was paid. Throws FeeHistoryFailure.
LiveGasQuote deriveLive(const FeeHistoryResponse& from);

} // namespace torvane

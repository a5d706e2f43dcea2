#pragma once

#include "Chain/JSONRPC.h"
#include "Chain/LiveQuotes.h"

#include <QList>

#include <exception>

namespace torvane {

/// The parameters of eth_feeHistory, newest block "latest": a positional array of block count, block and percentiles.
struct FeeHistoryParams {
    FeeHistoryParams(quint64 blocks, const QList<double>& percentiles)
        : blockCount(blocks)
        , rewardPercentiles(percentiles) {}

    quint64 blockCount;
    QString newestBlock = QStringLiteral("latest");
    QList<double> rewardPercentiles;

    auto elements() const { return std::tuple{HexQuantity{blockCount}, newestBlock, rewardPercentiles}; }
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

/// A fee history whose lists do not fit together.
class FeeHistoryFailure final : public std::exception {
public:
    enum class Case { invalidLengths, invalidReward };

    explicit FeeHistoryFailure(Case which)
        : m_case(which) {}

    Case which() const { return m_case; }

    const char* what() const noexcept override {
        return m_case == Case::invalidLengths ? "Fee history with lists of lengths that do not fit"
                                              : "Fee history with missing priority fees";
    }

private:
    Case m_case;
};

/// The live reading that a fee history gives: the newest block's base fee, and on top of it, per percentile, the median
/// over the blocks of what was paid. Throws FeeHistoryFailure; ends the program where the newest block's number does
/// not fit into 64 bits, which no chain will see: whoever takes histories from strangers asks hasBlockNumbers first.
LiveGasQuote deriveLive(const FeeHistoryResponse& from);

/// Whether 64 bits hold the numbers of all the history's blocks.
bool hasBlockNumbers(const FeeHistoryResponse& history);

} // namespace torvane

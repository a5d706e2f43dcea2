#include "EthereumGas.h"

#include "Chain/FeeHistory.h"

#include <algorithm>
#include <numeric>

namespace torvane {

namespace {

constexpr quint64 quoteBlocks = 20;
constexpr qsizetype dayBlocks = 7200;
constexpr qsizetype blocksPerPoint = 50;
constexpr qsizetype mostBlocksPerPage = 1024;

/// The part of eth_feeHistory's answer that is there without percentiles too.
struct BaseFees {
    HexQuantity oldestBlock;
    QList<HexQuantity> baseFeePerGas;
    QList<double> gasUsedRatio;
    static constexpr std::tuple keys{
        Key{"oldestBlock", &BaseFees::oldestBlock},
        Key{"baseFeePerGas", &BaseFees::baseFeePerGas},
        Key{"gasUsedRatio", &BaseFees::gasUsedRatio},
    };
};

void checkQuote(const FeeHistoryResponse& history) {
    if (!hasBlockNumbers(history))
        throw DecodingError(DecodingError::Cause::corrupted, "block numbers beyond 64 bits");
    static_cast<void>(deriveLive(history));
}

/// A page must end with the block asked for, and hold no more than was asked for: the next page goes on from it.
void checkPage(const BaseFees& page, qsizetype count, quint64 newest) {
    const qsizetype blocks = page.gasUsedRatio.size();
    if (blocks < 1 || blocks > count || page.baseFeePerGas.size() != blocks + 1)
        throw DecodingError(DecodingError::Cause::corrupted, "a fee history of another length");
    if (page.oldestBlock.value > newest || newest - page.oldestBlock.value != static_cast<quint64>(blocks - 1))
        throw DecodingError(DecodingError::Cause::corrupted, "a fee history of other blocks");
}

Task<BaseFees> readPage(Nodes& nodes, qsizetype count, quint64 newest) {
    FeeHistoryParams params(static_cast<quint64>(count), {});
    params.newestBlock = HexQuantity{newest}.toText();
    const Nodes::Check<BaseFees> check = [count, newest](const BaseFees& page) { checkPage(page, count, newest); };
    Task<BaseFees> call = nodes.ask<BaseFees>(QStringLiteral("eth_feeHistory"), params, check);
    const BaseFees page = co_await call;
    co_return page;
}

/// The means of groups of blocks, the newest group ending with the newest block. An incomplete group is left out,
/// unless it is all there is.
QList<double> means(const QList<double>& newestFirst) {
    QList<double> points;
    const qsizetype groups = std::max<qsizetype>(1, newestFirst.size() / blocksPerPoint);
    for (qsizetype group = 0; group < groups && !newestFirst.isEmpty(); ++group) {
        const auto begin = newestFirst.cbegin() + group * blocksPerPoint;
        const auto end = begin + std::min<qsizetype>(blocksPerPoint, newestFirst.cend() - begin);
        points.prepend(std::accumulate(begin, end, 0.0) / static_cast<double>(end - begin));
    }
    return points;
}

void appendNewestFirst(QList<double>& fees, const BaseFees& page) {
    for (qsizetype i = page.gasUsedRatio.size() - 1; i >= 0; --i)
        fees.append(page.baseFeePerGas[i].gwei()); // The last entry, the forecast, is not a block's.
}

} // namespace

Task<LiveGasQuote> readGas(Nodes& nodes) {
    const FeeHistoryParams params(quoteBlocks, {15, 50, 90});
    const Nodes::Check<FeeHistoryResponse> check = &checkQuote;
    Task<FeeHistoryResponse> call = nodes.ask<FeeHistoryResponse>(QStringLiteral("eth_feeHistory"), params, check);
    const FeeHistoryResponse history = co_await call;
    co_return deriveLive(history);
}

Task<BaseFeeHistory> readBaseFeeHistory(Nodes& nodes, quint64 newestBlock) {
    QList<double> newestFirst;
    bool isWhole = false;
    try {
        while (!isWhole) {
            const qsizetype count = std::min(mostBlocksPerPage, dayBlocks - newestFirst.size());
            Task<BaseFees> call = readPage(nodes, count, newestBlock);
            const BaseFees page = co_await call;
            appendNewestFirst(newestFirst, page);
            isWhole = newestFirst.size() >= dayBlocks || page.oldestBlock.value == 0;
            newestBlock = page.oldestBlock.value - 1;
        }
    } catch (const std::exception&) {
        // What has been read is right; the rest is the earlier document's, or comes with a later run.
    }
    co_return BaseFeeHistory{means(newestFirst), isWhole};
}

} // namespace torvane

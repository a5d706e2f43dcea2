#include "Chain/FeeHistory.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// The result of an answer; none where it is refused, which must be with words.
template <class Result>
std::optional<Result> resultOf(QByteArrayView bytes) {
    try {
        return JSON::decode<JSONRPCResponse<Result>>(bytes).value();
    } catch (const DecodingError& error) {
        insist(!error.description().isEmpty());
    } catch (const JSONRPCFailure& failure) {
        insist(!failure.remoteError() ||
               JSON::decode<JSONRPCError>(JSON::encode(*failure.remoteError())) == *failure.remoteError());
    }
    return std::nullopt;
}

bool fits(const FeeHistoryResponse& history) {
    bool hasTiers = true;
    for (const QList<HexQuantity>& row : history.reward)
        hasTiers = hasTiers && row.size() >= 3;
    const qsizetype blocks = history.gasUsedRatio.size();
    return blocks >= 1 && history.baseFeePerGas.size() == blocks + 1 && history.reward.size() == blocks && hasTiers;
}

/// Whether the base fee plus one of the blocks' fees of this percentile gives the tier.
bool isPaid(double tier, double baseFee, const FeeHistoryResponse& history, qsizetype percentile) {
    for (const QList<HexQuantity>& row : history.reward) {
        if (baseFee + row[percentile].gwei() == tier)
            return true;
    }
    return false;
}

void checkQuote(const LiveGasQuote& quote, const FeeHistoryResponse& history) {
    insist(std::isfinite(quote.baseFee) && quote.baseFee >= 0);
    const double tiers[] = {quote.low, quote.avg, quote.high};
    for (qsizetype percentile = 0; percentile < 3; ++percentile)
        insist(isPaid(tiers[percentile], quote.baseFee, history, percentile));
    insist(quote.blockNumber >= history.oldestBlock.value);
    insist(quote.blockNumber - history.oldestBlock.value == static_cast<quint64>(history.gasUsedRatio.size()) - 1);
}

void checkFeeHistory(QByteArrayView bytes) {
    const auto history = resultOf<FeeHistoryResponse>(bytes);
    if (!history || !hasBlockNumbers(*history))
        return;
    try {
        checkQuote(deriveLive(*history), *history);
    } catch (const FeeHistoryFailure&) {
        insist(!fits(*history));
        return;
    }
    insist(fits(*history));
}

void checkGasPrice(QByteArrayView bytes) {
    const auto price = resultOf<HexQuantity>(bytes);
    insist(!price || (std::isfinite(price->gwei()) && price->gwei() >= 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    checkFeeHistory(bytes);
    checkGasPrice(bytes);
    return 0;
}

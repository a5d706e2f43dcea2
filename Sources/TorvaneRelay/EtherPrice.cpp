#include "EtherPrice.h"

#include "PriceRounds.h"

#include <cmath>

namespace torvane {

namespace {

constexpr qint64 oldestPriceSeconds = 2 * 3600;
constexpr qint64 daySeconds = 24 * 3600;
constexpr quint64 mostDecimals = 36;
constexpr quint64 meanSeconds = 300;
constexpr double weiPerMicroDollar = 1e12; // Ether has 12 decimals more than the dollar token.

Task<int> readDecimals(ChainAtBlock chain, QString feed) {
    Task<Words> call = chain.call(contractCall(feed, u"decimals()"));
    const Words words = co_await call;
    const std::optional<quint64> decimals = words.at(0).toUnsigned();
    if (!decimals || *decimals > mostDecimals)
        throw PriceFailure("the price feed has no sensible number of decimals");
    co_return static_cast<int>(*decimals);
}

void requireFresh(const PriceRound& round, qint64 now) {
    if (round.updatedAt < now - oldestPriceSeconds)
        throw PriceFailure("the price feed is more than two hours old");
    if (round.updatedAt > now + oldestPriceSeconds)
        throw PriceFailure("the price feed is ahead of this machine's clock");
}

/// One unit of dollars is worth 1.0001^tick wei of the pool, by the pool's own definition.
double priceAtTick(double tick) {
    return weiPerMicroDollar / std::pow(1.0001, tick);
}

double meanPrice(const Words& observation) {
    // Two lists: where they begin, then the first one's length and its two cumulative ticks.
    const std::optional<qint64> earlier = observation.at(3).toSigned();
    const std::optional<qint64> later = observation.at(4).toSigned();
    if (!earlier || !later || observation.at(2).toUnsigned() != quint64{2})
        throw DecodingError(DecodingError::Cause::corrupted, "not the ticks of a pool");
    return priceAtTick(static_cast<double>(*later - *earlier) / static_cast<double>(meanSeconds));
}

Task<double> readMeanPrice(ChainAtBlock chain, QString pool) {
    // A list as the only argument: where it begins, its length, how many seconds ago.
    const QList<Word> arguments{Word(quint64{Word::size}), Word(quint64{2}), Word(meanSeconds), Word(quint64{0})};
    Task<Words> call = chain.call(contractCall(pool, u"observe(uint32[])", arguments));
    const Words words = co_await call;
    co_return meanPrice(words);
}

/// The square root of the price, with 96 binary places.
Task<double> readSpotPrice(ChainAtBlock chain, QString pool) {
    Task<Words> call = chain.call(contractCall(pool, u"slot0()"));
    const Words words = co_await call;
    const double root = words.at(0).scaled(0) / 0x1p96;
    co_return weiPerMicroDollar / (root * root);
}

} // namespace

Task<EtherPrice> readEtherPrice(ChainAtBlock chain, QString feed, QDateTime now) {
    Task<int> decimalsCall = readDecimals(chain, feed);
    const int decimals = co_await decimalsCall;
    const PriceRounds rounds(chain, feed, decimals);
    Task<PriceRound> latestCall = rounds.latest();
    const PriceRound latest = co_await latestCall;
    const qint64 seconds = now.toSecsSinceEpoch();
    requireFresh(latest, seconds);
    Task<PriceRound> earlierCall = rounds.lastBefore(latest, seconds - daySeconds);
    const PriceRound earlier = co_await earlierCall;
    co_return EtherPrice{latest.price, 100 * (latest.price - earlier.price) / earlier.price};
}

Task<double> readPoolPrice(ChainAtBlock chain, QString pool) {
    double price = 0;
    bool hasMean = true;
    try {
        Task<double> mean = readMeanPrice(chain, pool);
        price = co_await mean;
    } catch (const CallReverted&) {
        hasMean = false; // The pool keeps fewer observations.
    }
    if (!hasMean) {
        Task<double> spot = readSpotPrice(chain, pool);
        price = co_await spot;
    }
    if (!std::isfinite(price) || price <= 0)
        throw DecodingError(DecodingError::Cause::corrupted, "no price");
    co_return price;
}

double spreadPercent(double price, double second) {
    return 100 * std::abs(price - second) / price;
}

} // namespace torvane

#include "PriceRounds.h"

#include "EtherPrice.h"

#include <cmath>

namespace torvane {

namespace {

constexpr quint64 firstStep = 16; // A quiet day has 24 rounds.
constexpr quint64 mostPhases = 3;

bool isOldEnough(const std::optional<PriceRound>& round, qint64 time) {
    return round && round->updatedAt <= time;
}

} // namespace

PriceRound PriceRounds::roundFrom(const Words& words) const {
    const Word& id = words.at(0);
    const Word& answer = words.at(1);
    const std::optional<qint64> updatedAt = words.at(3).toSigned();
    const PriceRound round{id.high(), id.low(), answer.scaled(m_decimals), updatedAt.value_or(0)};
    if (answer.isNegative() || !std::isfinite(round.price) || round.price <= 0 || round.updatedAt <= 0)
        throw PriceFailure("the price feed has no price");
    return round;
}

Task<PriceRound> PriceRounds::latest() const {
    Task<Words> call = m_chain.call(contractCall(m_feed, u"latestRoundData()"));
    const Words words = co_await call;
    co_return roundFrom(words);
}

/// None where there is no such round: newer feeds refuse, older ones answer zeros.
Task<std::optional<PriceRound>> PriceRounds::round(quint64 phase, quint64 number) const {
    Task<Words> call = m_chain.call(contractCall(m_feed, u"getRoundData(uint80)", {Word(phase, number)}));
    std::optional<PriceRound> found;
    try {
        const Words words = co_await call;
        found = roundFrom(words);
    } catch (const CallReverted&) {
    } catch (const PriceFailure&) {
    }
    co_return found;
}

Task<PriceRound> PriceRounds::lastBefore(PriceRound latest, qint64 time) const {
    Task<std::optional<PriceRound>> search = lastBeforeInPhase(latest, time);
    std::optional<PriceRound> found = co_await search;
    for (quint64 back = 1; !found && back <= mostPhases && back < latest.phase; ++back) {
        Task<std::optional<PriceRound>> earlier = lastBeforeInEarlierPhase(latest.phase - back, time);
        found = co_await earlier;
    }
    if (!found)
        throw PriceFailure("the price feed has no price of a day ago");
    co_return *found;
}

/// Goes back in growing steps until a round is old enough.
Task<std::optional<PriceRound>> PriceRounds::lastBeforeInPhase(PriceRound latest, qint64 time) const {
    quint64 young = latest.number;
    for (quint64 step = firstStep; young > 1; step *= 2) {
        const quint64 number = young > step ? young - step : 1;
        Task<std::optional<PriceRound>> call = round(latest.phase, number);
        const std::optional<PriceRound> tried = co_await call;
        if (isOldEnough(tried, time)) {
            Task<PriceRound> search = bisect(*tried, young, time);
            const PriceRound found = co_await search;
            co_return found;
        }
        young = number;
    }
    co_return std::nullopt;
}

/// Nobody knows the number of the phase's last round: goes up in growing steps while there is one that is old enough.
Task<std::optional<PriceRound>> PriceRounds::lastBeforeInEarlierPhase(quint64 phase, qint64 time) const {
    Task<std::optional<PriceRound>> first = round(phase, 1);
    std::optional<PriceRound> old = co_await first;
    if (!isOldEnough(old, time))
        co_return std::nullopt;
    for (quint64 step = 1;; step *= 2) {
        Task<std::optional<PriceRound>> call = round(phase, old->number + step);
        const std::optional<PriceRound> tried = co_await call;
        if (!isOldEnough(tried, time)) {
            Task<PriceRound> search = bisect(*old, old->number + step, time);
            const PriceRound found = co_await search;
            co_return found;
        }
        old = tried;
    }
}

/// `old` is old enough, and `young` is not, or does not exist.
Task<PriceRound> PriceRounds::bisect(PriceRound old, quint64 young, qint64 time) const {
    while (young - old.number > 1) {
        const quint64 middle = old.number + (young - old.number) / 2;
        Task<std::optional<PriceRound>> call = round(old.phase, middle);
        const std::optional<PriceRound> tried = co_await call;
        if (isOldEnough(tried, time))
            old = *tried;
        else
            young = middle;
    }
    co_return old;
}

} // namespace torvane

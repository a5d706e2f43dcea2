#pragma once

#include "Questions.h"

#include <QString>

#include <optional>

namespace torvane {

/// One round of a Chainlink feed: a price and when it was agreed on.
struct PriceRound {
    quint64 phase;  ///< each is an aggregator of its own, behind the same address
    quint64 number; ///< in its phase, from 1
    double price;
    qint64 updatedAt; ///< seconds since 1970
};

/// The rounds of a feed, asked through its proxy (Chainlink's AggregatorV3Interface; a round's id is its phase in the
/// upper 16 of 80 bits and its number below). Throws PriceFailure, or as Nodes::ask does.
class PriceRounds final {
public:
    PriceRounds(const ChainAtBlock& chain, const QString& feed, int decimals)
        : m_chain(chain)
        , m_feed(feed)
        , m_decimals(decimals) {}

    Task<PriceRound> latest() const;

    /// The last round at or before this time, found in about eight questions.
    Task<PriceRound> lastBefore(PriceRound latest, qint64 time) const;

private:
    Task<std::optional<PriceRound>> round(quint64 phase, quint64 number) const;
    Task<std::optional<PriceRound>> lastBeforeInPhase(PriceRound latest, qint64 time) const;
    Task<std::optional<PriceRound>> lastBeforeInEarlierPhase(quint64 phase, qint64 time) const;
    Task<PriceRound> bisect(PriceRound old, quint64 young, qint64 time) const;
    PriceRound roundFrom(const Words& words) const;

    ChainAtBlock m_chain;
    QString m_feed;
    int m_decimals;
};

} // namespace torvane

#pragma once

#include "Questions.h"

#include <QDateTime>

#include <exception>
#include <optional>

namespace torvane {

/// A price feed that gives no price that may be published.
class PriceFailure final : public std::exception {
public:
    explicit PriceFailure(const char* what)
        : m_what(what) {}

    const char* what() const noexcept override { return m_what; }

private:
    const char* m_what;
};

struct EtherPrice {
    double usd;
    double change24h; ///< percent
};

/// The price by a Chainlink feed, and its change since the feed's last round of a day ago. The feed is renewed when the
/// price moves, and each hour: one that is more than two hours old is not believed. Throws PriceFailure, or as
/// Nodes::ask does.
Task<EtherPrice> readEtherPrice(ChainAtBlock chain, QString feed, QDateTime now);

/// The price of ether in dollars by a Uniswap v3 pool of USDC (token 0, 6 decimals) and WETH: the mean of five minutes,
/// or where the pool's memory is shorter the price of the moment. Throws as Nodes::ask does.
Task<double> readPoolPrice(ChainAtBlock chain, QString pool);

/// How far a second price is from the first, in percent of the first.
double spreadPercent(double price, double second);

} // namespace torvane

#pragma once

#include "Support/RawEnum.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <exception>
#include <optional>
#include <string>

namespace torvane {

/// How the cost of a plain transfer on a network is found.
enum class TransferModel { estimate, opStack, scroll, linea, starknet };
template <>
inline constexpr std::array rawValues<TransferModel>{
    std::pair{TransferModel::estimate, QLatin1StringView("estimate")},
    std::pair{TransferModel::opStack, QLatin1StringView("op-stack")},
    std::pair{TransferModel::scroll, QLatin1StringView("scroll")},
    std::pair{TransferModel::linea, QLatin1StringView("linea")},
    std::pair{TransferModel::starknet, QLatin1StringView("starknet")},
};

/// What the relay asks, and whom: the operator's table, or the built-in one.
struct RelayTable {
    struct Ethereum {
        QString chainId; ///< as the node says it: "0x1"
        QStringList endpoints;
        QString priceFeed;
        QString pricePool; ///< empty: no second source
    };

    struct Network {
        QString name;
        QString tag;
        QString chainId;
        QStringList endpoints;
        TransferModel transfer;
    };

    struct Staking {
        QString protocol;
        QString token;
        QString contract;
        QString rate; ///< the signature of a function; empty: a token is one ether
        QString rateContract;
    };

    double minutesBetweenRuns;
    int requestsAtOnce;
    int requestsAtOncePerHost;
    double requestsPerSecondPerHost;
    Ethereum ethereum;
    QList<Network> networks;
    QList<Staking> staking;

    /// Reads a table (TOML 1.0). Throws TableError for the first thing that is wrong, a key that means nothing
    /// included.
    static RelayTable read(const QByteArray& toml);

    /// The text of the built-in table.
    static QByteArray builtIn();
};

/// A table that cannot be used: the line, the key and what is wrong with it.
class TableError final : public std::exception {
public:
    explicit TableError(std::string what)
        : m_what(std::move(what)) {}

    const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_what;
};

} // namespace torvane

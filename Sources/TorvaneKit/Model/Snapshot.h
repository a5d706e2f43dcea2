#pragma once

#include "Support/JSONRecord.h"

#include <QList>
#include <QString>

#include <optional>
#include <tuple>

/// The relay's document and its records. Gas in gwei, money in US dollars, changes and spreads in percent; all of it,
/// shares too, as the relay sends it. A change is a new value; copies share their texts and lists.
namespace torvane {

/// Price of ether.
struct PriceData {
    double eth;
    double change24h;
    std::optional<double> chainlinkEth;    ///< by the Chainlink feed
    std::optional<double> sourceSpreadPct; ///< between the sources of the price

    static constexpr std::tuple keys{
        Key{"eth", &PriceData::eth},
        Key{"change24h", &PriceData::change24h},
        Key{"chainlinkEth", &PriceData::chainlinkEth},
        Key{"sourceSpreadPct", &PriceData::sourceSpreadPct},
    };
};

/// Gas on Ethereum mainnet.
struct GasData {
    double baseFee;
    double low;
    double avg;
    double high;
    QList<double> history; ///< base fees of the last 24 hours, in the order drawn, left to right
    std::optional<double> feeTransferUsd;
    std::optional<double> feeSwapUsd;

    static constexpr std::tuple keys{
        Key{"baseFee", &GasData::baseFee},
        Key{"low", &GasData::low},
        Key{"avg", &GasData::avg},
        Key{"high", &GasData::high},
        Key{"history", &GasData::history},
        Key{"feeTransferUsd", &GasData::feeTransferUsd},
        Key{"feeSwapUsd", &GasData::feeSwapUsd},
    };
};

/// One Layer 2 network. Its name is its identity.
struct L2Entry {
    QString name;
    QString tag;
    std::optional<double> costUsd;
    std::optional<double> costGwei;
    QString status; ///< "Normal", "Elevated", "Unavailable" or any other text
    std::optional<double> txCount;
    std::optional<double> dailyActiveAddresses;
    std::optional<double> tvlUsd;
    std::optional<QList<double>> history; ///< gas, in the order drawn, left to right
    std::optional<double> historyWindowMinutes;
    std::optional<QList<QString>> rpc; ///< JSON-RPC endpoints, the preferred one first
    std::optional<double> blockTimeSec;

    static constexpr std::tuple keys{
        Key{"name", &L2Entry::name},
        Key{"tag", &L2Entry::tag},
        Key{"costUsd", &L2Entry::costUsd},
        Key{"costGwei", &L2Entry::costGwei},
        Key{"status", &L2Entry::status},
        Key{"txCount", &L2Entry::txCount},
        Key{"dailyActiveAddresses", &L2Entry::dailyActiveAddresses},
        Key{"tvlUsd", &L2Entry::tvlUsd},
        Key{"history", &L2Entry::history},
        Key{"historyWindowMinutes", &L2Entry::historyWindowMinutes},
        Key{"rpc", &L2Entry::rpc},
        Key{"blockTimeSec", &L2Entry::blockTimeSec},
    };
};

/// Where a figure came from.
struct SourceProvenance {
    QString status;
    QString source;
    QString detail;

    static constexpr std::tuple keys{
        Key{"status", &SourceProvenance::status},
        Key{"source", &SourceProvenance::source},
        Key{"detail", &SourceProvenance::detail},
    };
};

/// One protocol that stakes ether and issues a token for it.
struct LiquidStakingProtocol {
    QString protocolName;
    QString token; ///< its symbol
    std::optional<double> tokenSupply;
    std::optional<double> exchangeRate;  ///< ether for one token
    std::optional<double> ethEquivalent; ///< the supply in ether
    std::optional<double> shareOfTotalStaked;
    SourceProvenance provenance;

    static constexpr std::tuple keys{
        Key{"protocol", &LiquidStakingProtocol::protocolName},
        Key{"token", &LiquidStakingProtocol::token},
        Key{"tokenSupply", &LiquidStakingProtocol::tokenSupply},
        Key{"exchangeRate", &LiquidStakingProtocol::exchangeRate},
        Key{"ethEquivalent", &LiquidStakingProtocol::ethEquivalent},
        Key{"shareOfTotalStaked", &LiquidStakingProtocol::shareOfTotalStaked},
        Key{"provenance", &LiquidStakingProtocol::provenance},
    };
};

struct LiquidStakingData {
    QList<LiquidStakingProtocol> protocols;
    std::optional<double> totalEthEquivalent; ///< ether held by all of them
    std::optional<double> shareOfTotalStaked; ///< their part of all staked ether
    SourceProvenance provenance;

    static constexpr std::tuple keys{
        Key{"protocols", &LiquidStakingData::protocols},
        Key{"totalEthEquivalent", &LiquidStakingData::totalEthEquivalent},
        Key{"shareOfTotalStaked", &LiquidStakingData::shareOfTotalStaked},
        Key{"provenance", &LiquidStakingData::provenance},
    };
};

struct StakingData {
    LiquidStakingData liquidStaking;

    static constexpr std::tuple keys{Key{"liquidStaking", &StakingData::liquidStaking}};
};

/// The whole document.
struct Snapshot {
    QString generatedAt; ///< ISO 8601 with an offset, with or without fractions of a second; kept as text
    PriceData price;
    GasData gas;
    QList<L2Entry> l2; ///< in the relay's order
    StakingData staking;

    static constexpr std::tuple keys{
        Key{"generatedAt", &Snapshot::generatedAt},
        Key{"price", &Snapshot::price},
        Key{"gas", &Snapshot::gas},
        Key{"l2", &Snapshot::l2},
        Key{"staking", &Snapshot::staking},
    };
};

/// The first network of exactly this name, in the list; none when it is not listed.
const L2Entry* findL2(const QString& name, const QList<L2Entry>& l2);

} // namespace torvane

#include "Reading.h"

#include "LiquidStaking.h"
#include "Questions.h"
#include "Together.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace torvane {

namespace {

constexpr qint64 mostSecondsBehind = 600;
constexpr quint64 blocksBelowLatest = 2; // Which all nodes have, also those that are a little behind.

void miss(Reading& reading, const char* what, const std::exception& failure) {
    if (reading.trouble.isEmpty())
        reading.trouble = QString::fromUtf8(what) + QStringLiteral(": ") + QString::fromUtf8(failure.what());
}

/// The block to ask at, of the nodes that keep up with the chain; the others are left out.
Task<std::optional<quint64>> readBlockToAskAt(Nodes& nodes, qint64 now) {
    std::optional<quint64> lowest;
    const Nodes::Check<Block> take = [&lowest, now](const Block& latest) {
        if (std::abs(now - static_cast<qint64>(latest.timestamp.value & std::numeric_limits<qint64>::max())) >
            mostSecondsBehind)
            throw DecodingError(DecodingError::Cause::corrupted, "its newest block is not of now");
        lowest = std::min(lowest.value_or(latest.number.value), latest.number.value);
    };
    Task<> answers =
        nodes.askEach<Block>(QStringLiteral("eth_getBlockByNumber"), BlockParams{QStringLiteral("latest")}, take);
    co_await answers;
    if (!lowest)
        co_return std::nullopt;
    co_return *lowest - std::min(blocksBelowLatest, *lowest);
}

Task<> readPriceInto(Reading& reading, ChainAtBlock chain, QString feed, QDateTime now) {
    try {
        Task<EtherPrice> call = readEtherPrice(chain, feed, now);
        reading.price = co_await call;
    } catch (const std::exception& failure) {
        miss(reading, "no price of ether", failure);
    }
}

Task<> readPoolPriceInto(Reading& reading, ChainAtBlock chain, QString pool) {
    if (pool.isEmpty())
        co_return;
    try {
        Task<double> call = readPoolPrice(chain, pool);
        reading.poolPrice = co_await call;
    } catch (const std::exception&) {
        // The document does without the second source.
    }
}

Task<> readGasInto(Reading& reading, Nodes& nodes) {
    try {
        Task<LiveGasQuote> call = readGas(nodes);
        reading.gas = co_await call;
    } catch (const std::exception& failure) {
        miss(reading, "no gas prices of Ethereum", failure);
    }
}

Task<> readHistoryInto(Reading& reading, Nodes& nodes) {
    Task<BaseFeeHistory> call = readBaseFeeHistory(nodes, reading.block);
    reading.baseFeeHistory = co_await call;
}

Task<> readProtocolInto(LiquidStakingProtocol& protocol, ChainAtBlock chain, RelayTable::Staking row) {
    Task<LiquidStakingProtocol> call = readProtocol(chain, row);
    protocol = co_await call;
}

Task<> readEthereumInto(Reading& reading, RequestGate& gate, RelayTable table, QDateTime now) {
    Nodes nodes(gate, table.ethereum.endpoints);
    Task<> greeting = askChainId(nodes, QStringLiteral("eth_chainId"), table.ethereum.chainId);
    co_await greeting;
    Task<std::optional<quint64>> blockCall = readBlockToAskAt(nodes, now.toSecsSinceEpoch());
    const std::optional<quint64> block = co_await blockCall;
    if (!block) {
        reading.trouble = QStringLiteral("no node of Ethereum: ") + nodes.troubles();
        co_return;
    }
    reading.block = *block;
    const ChainAtBlock chain{nodes, HexQuantity{*block}.toText()};
    std::vector<Task<>> tasks;
    tasks.push_back(readPriceInto(reading, chain, table.ethereum.priceFeed, now));
    tasks.push_back(readGasInto(reading, nodes));
    tasks.push_back(readPoolPriceInto(reading, chain, table.ethereum.pricePool));
    tasks.push_back(readHistoryInto(reading, nodes));
    for (qsizetype i = 0; i < table.staking.size(); ++i)
        tasks.push_back(readProtocolInto(reading.protocols[i], chain, table.staking[i]));
    Task<> all = whenAll(std::move(tasks));
    co_await all;
}

Task<> readNetworkInto(NetworkReading& row, RequestGate& gate, RelayTable::Network network) {
    Task<NetworkReading> call = readNetwork(gate, network);
    row = co_await call;
}

} // namespace

Task<Reading> readAll(RequestGate& gate, RelayTable table, QDateTime now) {
    Reading reading;
    reading.networks.resize(table.networks.size());
    reading.protocols.resize(table.staking.size());
    std::vector<Task<>> tasks;
    tasks.push_back(readEthereumInto(reading, gate, table, now));
    for (qsizetype i = 0; i < table.networks.size(); ++i)
        tasks.push_back(readNetworkInto(reading.networks[i], gate, table.networks[i]));
    Task<> all = whenAll(std::move(tasks));
    co_await all;
    co_return reading;
}

} // namespace torvane

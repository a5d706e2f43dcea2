#include "NetworkRow.h"

#include "BlockTime.h"
#include "Questions.h"
#include "StarknetRow.h"
#include "TransferCost.h"

#include <algorithm>

namespace torvane {

namespace {

Task<Block> readBlock(Nodes& nodes, QString block) {
    Task<Block> call = nodes.ask<Block>(QStringLiteral("eth_getBlockByNumber"), BlockParams{block});
    const Block answer = co_await call;
    co_return answer;
}

/// The mean over the last thousand blocks, since nodes tell time in whole seconds. None for a chain of one block.
Task<std::optional<double>> readBlockSeconds(Nodes& nodes) {
    Task<Block> latestCall = readBlock(nodes, QStringLiteral("latest"));
    const Block latest = co_await latestCall;
    const quint64 back = std::min(blocksBetween, latest.number.value);
    Task<Block> earlierCall = readBlock(nodes, HexQuantity{latest.number.value - back}.toText());
    const Block earlier = co_await earlierCall;
    co_return secondsPerBlock({latest.number.value, latest.timestamp.value},
                              {earlier.number.value, earlier.timestamp.value});
}

/// The price by the first node that has one; those that have none are left out from now on.
Task<std::optional<quint64>> readPrice(Nodes& nodes) {
    std::optional<quint64> price;
    const Nodes::Check<HexQuantity> take = [&price](const HexQuantity& answer) {
        if (!price)
            price = answer.value;
    };
    Task<> answers = nodes.askEach<HexQuantity>(QStringLiteral("eth_gasPrice"), EmptyRPCParams{}, take);
    co_await answers;
    co_return price;
}

Task<> readOptional(NetworkReading& reading, Nodes& nodes, RelayTable::Network network, quint64 price) {
    try {
        Task<std::optional<double>> call = readBlockSeconds(nodes);
        reading.blockSeconds = co_await call;
    } catch (const std::exception& failure) {
        reading.trouble = QStringLiteral("no block time: ") + QString::fromUtf8(failure.what());
    }
    try {
        Task<double> call = readTransferCost(nodes, network, price);
        reading.transferEther = co_await call;
    } catch (const std::exception& failure) {
        reading.trouble = QStringLiteral("no cost: ") + QString::fromUtf8(failure.what());
    }
}

Task<NetworkReading> readEVM(RequestGate& gate, RelayTable::Network network) {
    NetworkReading reading;
    Nodes nodes(gate, network.endpoints);
    Task<> greeting = askChainId(nodes, QStringLiteral("eth_chainId"), network.chainId);
    co_await greeting;
    Task<std::optional<quint64>> priceCall = readPrice(nodes);
    const std::optional<quint64> price = co_await priceCall;
    reading.endpoints = nodes.endpoints();
    reading.trouble = nodes.troubles();
    if (!price)
        co_return reading;
    reading.priceGwei = HexQuantity{*price}.gwei();
    Task<> rest = readOptional(reading, nodes, network, *price);
    co_await rest;
    co_return reading;
}

} // namespace

Task<NetworkReading> readNetwork(RequestGate& gate, RelayTable::Network network) {
    if (network.transfer == TransferModel::starknet)
        return readStarknet(gate, network);
    return readEVM(gate, network);
}

} // namespace torvane

#include "StarknetRow.h"

#include "BlockTime.h"
#include "Questions.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr QLatin1StringView blockMethod("starknet_getBlockWithTxHashes");

struct StarknetPrice {
    HexQuantity priceInWei;
    static constexpr std::tuple keys{Key{"price_in_wei", &StarknetPrice::priceInWei}};
};

struct StarknetBlock {
    quint64 number;
    quint64 seconds;
    StarknetPrice l2GasPrice;
    static constexpr std::tuple keys{Key{"block_number", &StarknetBlock::number},
                                     Key{"timestamp", &StarknetBlock::seconds},
                                     Key{"l2_gas_price", &StarknetBlock::l2GasPrice}};
};

struct LatestBlock {
    auto elements() const { return std::tuple{QStringLiteral("latest")}; }
};

struct StarknetBlockId {
    quint64 number;
    static constexpr std::tuple keys{Key{"block_number", &StarknetBlockId::number}};
};

struct NumberedBlock {
    StarknetBlockId id;

    auto elements() const { return std::tuple{id}; }
};

Task<std::optional<StarknetBlock>> readLatest(Nodes& nodes) {
    std::optional<StarknetBlock> latest;
    const Nodes::Check<StarknetBlock> take = [&latest](const StarknetBlock& answer) {
        if (!latest)
            latest = answer;
    };
    Task<> answers = nodes.askEach<StarknetBlock>(blockMethod, LatestBlock{}, take);
    co_await answers;
    co_return latest;
}

Task<> readBlockSeconds(NetworkReading& reading, Nodes& nodes, StarknetBlock latest) {
    const quint64 earlierNumber = latest.number - std::min(blocksBetween, latest.number);
    try {
        const NumberedBlock params{{earlierNumber}};
        Task<StarknetBlock> call = nodes.ask<StarknetBlock>(blockMethod, params);
        const StarknetBlock earlier = co_await call;
        reading.blockSeconds = secondsPerBlock({latest.number, latest.seconds}, {earlier.number, earlier.seconds});
    } catch (const std::exception& failure) {
        reading.trouble = QStringLiteral("no block time: ") + QString::fromUtf8(failure.what());
    }
}

} // namespace

Task<NetworkReading> readStarknet(RequestGate& gate, RelayTable::Network network) {
    NetworkReading reading;
    Nodes nodes(gate, network.endpoints);
    Task<> greeting = askChainId(nodes, QStringLiteral("starknet_chainId"), network.chainId);
    co_await greeting;
    Task<std::optional<StarknetBlock>> latestCall = readLatest(nodes);
    const std::optional<StarknetBlock> latest = co_await latestCall;
    reading.trouble = nodes.troubles();
    if (!latest)
        co_return reading;
    reading.priceGwei = latest->l2GasPrice.priceInWei.gwei();
    Task<> rest = readBlockSeconds(reading, nodes, *latest);
    co_await rest;
    co_return reading;
}

} // namespace torvane

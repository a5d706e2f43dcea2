#include "StandInWorld.h"

#include <QJsonObject>

#include <algorithm>

namespace torvane {

namespace {

const QString feed = QStringLiteral("0x5f4eC3Df9cbd43714FE2740f5E3616155c5b8419");
const QString pool = QStringLiteral("0x88e6A0c2dDD26FEEb64F039a2c41296FcB3f5640");
const QString reth = QStringLiteral("0xae78736Cd615f374D3085123A210448E74Fc6393");
const QString steth = QStringLiteral("0xae7ab96520DE3A18E5e111B5EaAb095312D7fE84");
const QString meth = QStringLiteral("0xd5F7838F5C461fefF7FE49ea5ebaF7728bB0ADfa");
const QString methStaking = QStringLiteral("0xe3cBd06D7dadB3F4e6557bAb7EdD924CD1489E8f");
const QString opStackOracle = QStringLiteral("0x420000000000000000000000000000000000000F");
const QString scrollOracle = QStringLiteral("0x5300000000000000000000000000000000000002");

constexpr quint64 hundredthGwei = 10'000'000;
constexpr quint64 gwei = 100 * hundredthGwei;
constexpr quint64 milliether = 1'000'000'000'000'000;
constexpr quint64 head = 1146;
constexpr quint64 mostBlocks = 400;

quint64 baseFee(quint64 block) {
    return 10 * gwei + block % 50 * hundredthGwei + block * (hundredthGwei / 1000);
}

QJsonValue feeHistory(const QJsonArray& params) {
    const quint64 newest = params[1] == QLatin1String("latest") ? head : params[1].toString().toULongLong(nullptr, 16);
    const quint64 count = std::min({params[0].toString().toULongLong(nullptr, 16), mostBlocks, newest + 1});
    QJsonArray fees;
    QJsonArray ratios;
    QJsonArray rewards;
    for (quint64 block = newest + 1 - count; block <= newest; ++block) {
        fees.append(hex(baseFee(block)));
        ratios.append(0.5);
        rewards.append(QJsonArray{hex(gwei), hex(2 * gwei), hex(3 * gwei)});
    }
    fees.append(hex(77 * gwei)); // The forecast is nobody's figure.
    QJsonObject history{{QStringLiteral("oldestBlock"), hex(newest + 1 - count)},
                        {QStringLiteral("baseFeePerGas"), fees},
                        {QStringLiteral("gasUsedRatio"), ratios}};
    if (!params[2].toArray().isEmpty())
        history.insert(QStringLiteral("reward"), rewards);
    return history;
}

QList<Word> priceRound(quint64 phase, quint64 number) {
    if (phase != 7 || number < 1 || number > 500)
        return {};
    const quint64 ago = 500 - number;
    const quint64 time = static_cast<quint64>(StandInWorld::now().toSecsSinceEpoch()) - 600 - ago * 1800;
    const quint64 price = (6000 - ago * 3) * 50'000'000; // 1.5 dollars a round, in eight decimals.
    return {Word(phase, number), Word(price), Word(time), Word(time), Word(phase, number)};
}

} // namespace

QDateTime StandInWorld::now() {
    return QDateTime(QDate(2026, 1, 10), QTime(12, 0), Qt::UTC);
}

StandInWorld::StandInWorld() {
    makeEthereum();
    makeNetwork(QStringLiteral("Arbitrum"), 42161).always(QStringLiteral("eth_estimateGas"), hex(25000));
    StandInChain& base = makeNetwork(QStringLiteral("Base"), 8453);
    base.onCall(opStackOracle, QStringLiteral("getL1Fee(bytes)"), {Word(milliether / 1000)});
    base.onCall(opStackOracle, QStringLiteral("getOperatorFee(uint256)"), {Word(milliether / 2000)});
    makeNetwork(QStringLiteral("Scroll"), 534352)
        .onCall(scrollOracle, QStringLiteral("getL1Fee(bytes)"), {Word(milliether / 500)});
    makeNetwork(QStringLiteral("Linea"), 59144)
        .always(QStringLiteral("linea_estimateGas"),
                QJsonObject{{QStringLiteral("gasLimit"), hex(30000)},
                            {QStringLiteral("baseFeePerGas"), hex(gwei / 100)},
                            {QStringLiteral("priorityFeePerGas"), hex(gwei / 25)}});
    makeStarknet();
}

void StandInWorld::makeEthereum() {
    auto node = std::make_unique<StandInChain>();
    node->always(QStringLiteral("eth_chainId"), hex(1));
    node->always(QStringLiteral("eth_getBlockByNumber latest"), blockAt(head, now().toSecsSinceEpoch() - 5));
    node->on(QStringLiteral("eth_feeHistory latest"), &feeHistory);
    node->on(QStringLiteral("eth_feeHistory earlier"), &feeHistory);
    makeFeed(*node);
    makeStaking(*node);
    m_chains.emplace(QStringLiteral("Ethereum"), std::move(node));
}

void StandInWorld::makeFeed(StandInChain& node) {
    node.onCall(feed, QStringLiteral("decimals()"), {Word(quint64{8})});
    node.onCall(feed, QStringLiteral("latestRoundData()"), priceRound(7, 500));
    node.onCall(feed, QStringLiteral("getRoundData(uint80)"), [](const QByteArray& arguments) {
        const Word id{QByteArrayView(arguments)};
        return priceRound(id.high(), id.low());
    });
    const quint64 ticks = 196'000 * 300;
    node.onCall(pool, QStringLiteral("observe(uint32[])"),
                {Word(quint64{64}), Word(quint64{160}), Word(quint64{2}), Word(quint64{1000}), Word(1000 + ticks),
                 Word(quint64{2}), Word(quint64{1}), Word(quint64{2})});
}

void StandInWorld::makeStaking(StandInChain& node) {
    const auto supply = [](quint64 thousandths) {
        // More than 64 bits of wei.
        const auto wei = static_cast<unsigned __int128>(thousandths) * milliether;
        return QList<Word>{Word(static_cast<quint64>(wei >> 64), static_cast<quint64>(wei))};
    };
    node.onCall(reth, QStringLiteral("totalSupply()"), supply(1'000'000));
    node.onCall(reth, QStringLiteral("getExchangeRate()"), {Word(quint64{1125} * milliether)});
    node.onCall(steth, QStringLiteral("totalSupply()"), supply(2'000'000));
    node.onCall(meth, QStringLiteral("totalSupply()"), supply(4'000'000));
    node.onCall(methStaking, QStringLiteral("mETHToETH(uint256)"), [](const QByteArray& arguments) {
        // So much for each token that is asked about.
        const quint64 tokens = Word{QByteArrayView(arguments)}.low() / (1000 * milliether);
        return QList<Word>{Word(tokens * 1062 * milliether + tokens * milliether / 2)};
    });
}

StandInChain& StandInWorld::makeNetwork(const QString& name, quint64 chainId) {
    auto node = std::make_unique<StandInChain>();
    const qint64 seconds = now().toSecsSinceEpoch();
    node->always(QStringLiteral("eth_chainId"), hex(chainId));
    node->always(QStringLiteral("eth_gasPrice"), hex(6'000'000));
    node->always(QStringLiteral("eth_getBlockByNumber latest"), blockAt(50'000, seconds));
    node->always(QStringLiteral("eth_getBlockByNumber earlier"), blockAt(49'000, seconds - 2000));
    return *m_chains.emplace(name, std::move(node)).first->second;
}

void StandInWorld::makeStarknet() {
    const auto block = [](qint64 number, qint64 seconds) {
        return QJsonObject{{QStringLiteral("block_number"), number},
                           {QStringLiteral("timestamp"), seconds},
                           {QStringLiteral("l2_gas_price"),
                            QJsonObject{{QStringLiteral("price_in_wei"), hex(4250 * gwei / 1000)},
                                        {QStringLiteral("price_in_fri"), QStringLiteral("0x2d79883d2000")}}}};
    };
    auto node = std::make_unique<StandInChain>();
    const qint64 seconds = now().toSecsSinceEpoch();
    node->always(QStringLiteral("starknet_chainId"), QStringLiteral("0x534e5f4d41494e"));
    node->always(QStringLiteral("starknet_getBlockWithTxHashes latest"), block(8000, seconds));
    node->always(QStringLiteral("starknet_getBlockWithTxHashes earlier"), block(7000, seconds - 3000));
    m_chains.emplace(QStringLiteral("Starknet"), std::move(node));
}

QStringList StandInWorld::names() const {
    QStringList names;
    for (const auto& [name, chain] : m_chains)
        names.append(name);
    return names;
}

RelayTable StandInWorld::table() const {
    RelayTable table{5, 20, 20, 1000, {}, {}, {}};
    table.ethereum = {QStringLiteral("0x1"), {m_chains.at(QStringLiteral("Ethereum"))->endpoint()}, feed, pool};
    const auto add = [&](const QString& name, const QString& chainId, TransferModel model) {
        table.networks.append({name, name.left(3).toUpper(), chainId, {m_chains.at(name)->endpoint()}, model});
    };
    add(QStringLiteral("Arbitrum"), QStringLiteral("0xa4b1"), TransferModel::estimate);
    add(QStringLiteral("Base"), QStringLiteral("0x2105"), TransferModel::opStack);
    add(QStringLiteral("Scroll"), QStringLiteral("0x82750"), TransferModel::scroll);
    add(QStringLiteral("Linea"), QStringLiteral("0xe708"), TransferModel::linea);
    add(QStringLiteral("Starknet"), QStringLiteral("0x534e5f4d41494e"), TransferModel::starknet);
    table.staking = {
        {QStringLiteral("Lido"), QStringLiteral("stETH"), steth, {}, steth},
        {QStringLiteral("Rocket Pool"), QStringLiteral("rETH"), reth, QStringLiteral("getExchangeRate()"), reth},
        {QStringLiteral("Mantle"), QStringLiteral("mETH"), meth, QStringLiteral("mETHToETH(uint256)"), methStaking}};
    return table;
}

} // namespace torvane

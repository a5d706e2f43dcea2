#include "AnvilWorld.h"

#include "Chain/JSONRPC.h"
#include "EVMCode.h"

#include <QDateTime>

namespace torvane {

namespace {

constexpr quint64 gwei = 1'000'000'000;
constexpr quint64 ether = gwei * gwei;
constexpr quint64 lastBlock = 170;
constexpr quint64 firstBlockWithTips = 151;

const QString opStackOracle = QStringLiteral("0x420000000000000000000000000000000000000F");
const QString scrollOracle = QStringLiteral("0x5300000000000000000000000000000000000002");
const QString estimatedAddress = QStringLiteral("0x76656c69736b0000000000000000000000000bed");

QString hexOf(quint64 number) {
    return HexQuantity{number}.toText();
}

QString hexOf(const Word& word) {
    return Words({word}).toText();
}

EVMFunction roundOfArgument() {
    return returningRound(QStringLiteral("getRoundData(uint80)"),
                          [](EVMCode& code) { code.push(quint64{4}).put({EVMCode::loadInput}); });
}

EVMFunction latestRound() {
    return returningRound(QStringLiteral("latestRoundData()"),
                          [](EVMCode& code) { code.push(quint64{0}).put({EVMCode::load}); });
}

} // namespace

AnvilWorld::AnvilWorld()
    : m_table(RelayTable::read(RelayTable::builtIn())) {
    m_table.requestsPerSecondPerHost = 1000;
    const QString ethereumName = QStringLiteral("Ethereum");
    m_table.ethereum.endpoints = {start(ethereumName, QStringLiteral("1")).url().toString()};
    makeEthereum();
    for (qsizetype i = 0; i < m_table.networks.size(); ++i) {
        RelayTable::Network& network = m_table.networks[i];
        if (network.transfer == TransferModel::starknet) {
            network.endpoints = {m_standIns.chain(network.name).endpoint()};
            continue;
        }
        const QString id = QString::number(HexQuantity::fromText(network.chainId).value);
        network.endpoints = {start(network.name, id).url().toString()};
        if (network.transfer == TransferModel::linea)
            network.endpoints.append(m_standIns.chain(network.name).endpoint());
        makeNetwork(network, static_cast<quint64>(i) + 1);
    }
}

AnvilNode& AnvilWorld::start(const QString& name, const QString& chainId) {
    const QStringList arguments{QStringLiteral("--chain-id"),  chainId,
                                QStringLiteral("--base-fee"),  QStringLiteral("10000000000"),
                                QStringLiteral("--gas-limit"), QStringLiteral("30000000")};
    return *m_nodes.emplace(name, std::make_unique<AnvilNode>(arguments)).first->second;
}

void AnvilWorld::putCode(AnvilNode& node, const QString& address, const QByteArray& code) {
    node.call(QStringLiteral("anvil_setCode"), {address, QStringLiteral("0x") + QString::fromLatin1(code.toHex())});
}

void AnvilWorld::putWord(AnvilNode& node, const QString& address, const Word& slot, const Word& value) {
    node.call(QStringLiteral("anvil_setStorageAt"), {address, hexOf(slot), hexOf(value)});
}

void AnvilWorld::makeEthereum() {
    makeFeed();
    makeStaking();
    for (quint64 block = 1; block <= lastBlock; ++block) {
        const bool hasTips = block >= firstBlockWithTips;
        const QList<quint64> tips = hasTips ? QList<quint64>{gwei, 2 * gwei, 3 * gwei} : QList<quint64>();
        ethereum().mine(static_cast<quint64>(baseFee(block)) * gwei, tips);
    }
}

void AnvilWorld::makeFeed() {
    const QString feed = m_table.ethereum.priceFeed;
    putCode(ethereum(), feed,
            evmContract({roundOfArgument(), latestRound(), returningSlots(QStringLiteral("decimals()"), 1, 1)}));
    putWord(ethereum(), feed, Word(quint64{1}), Word(quint64{8}));
    putWord(ethereum(), feed, Word(quint64{0}), Word(7, 5));
    for (quint64 number = 1; number <= 5; ++number)
        putRound(7, number, 3195 + number, 600 + static_cast<qint64>(5 - number) * 3600);
    for (quint64 number = 1; number <= 40; ++number)
        putRound(6, number, 3000 - 2 * (40 - number), 600 + 5 * 3600 + static_cast<qint64>(40 - number) * 3600);
    const QString pool = m_table.ethereum.pricePool;
    putCode(ethereum(), pool, evmContract({returningSlots(QStringLiteral("observe(uint32[])"), 0, 5)}));
    const QList<quint64> observation{64, 160, 2, 5000, 5000 + 300 * 195'300};
    for (qsizetype i = 0; i < observation.size(); ++i)
        putWord(ethereum(), pool, Word(static_cast<quint64>(i)), Word(observation[i]));
}

void AnvilWorld::putRound(quint64 phase, quint64 number, quint64 dollars, qint64 secondsAgo) {
    const qint64 time = QDateTime::currentSecsSinceEpoch() - secondsAgo;
    const QString feed = m_table.ethereum.priceFeed;
    putWord(ethereum(), feed, Word(phase, number), Word(dollars * 100'000'000));
    putWord(ethereum(), feed, timeSlot(phase, number), Word(static_cast<quint64>(time)));
}

quint64 AnvilWorld::rateOf(const QString& token) {
    return ether + static_cast<quint64>(token.size()) * (ether / 64);
}

void AnvilWorld::makeStaking() {
    // A thousand tokens and a quarter are more than 64 bits of wei.
    const auto supply = static_cast<unsigned __int128>(1000) * ether + ether / 4;
    const EVMFunction total = returningSlots(QStringLiteral("totalSupply()"), 0, 1);
    for (const RelayTable::Staking& row : m_table.staking) {
        QList<EVMFunction> functions{total};
        const EVMFunction rate = row.rate.endsWith(QLatin1String("(uint256)"))
                                     ? returningProduct(row.rate, 1, 0, Word(ether))
                                     : returningSlots(row.rate, 1, 1);
        if (!row.rate.isEmpty() && row.rateContract == row.contract)
            functions.append(rate);
        putCode(ethereum(), row.contract, evmContract(functions));
        if (row.rateContract != row.contract)
            putCode(ethereum(), row.rateContract, evmContract({rate}));
        putWord(ethereum(), row.contract, Word(quint64{0}),
                Word(static_cast<quint64>(supply >> 64), static_cast<quint64>(supply)));
        putWord(ethereum(), row.rateContract, Word(quint64{1}), Word(rateOf(row.token)));
    }
}

void AnvilWorld::makeNetwork(const RelayTable::Network& network, quint64 place) {
    AnvilNode& node = *m_nodes.at(network.name);
    const EVMFunction l1Fee = returningProduct(QStringLiteral("getL1Fee(bytes)"), 0, 1, Word(quint64{1}));
    const EVMFunction operatorFee = returningProduct(QStringLiteral("getOperatorFee(uint256)"), 1, 0, Word(quint64{1}));
    if (network.transfer == TransferModel::opStack) {
        putCode(node, opStackOracle, evmContract({l1Fee, operatorFee}));
        putWord(node, opStackOracle, Word(quint64{0}), Word(gwei));
        putWord(node, opStackOracle, Word(quint64{1}), Word(quint64{3}));
    }
    if (network.transfer == TransferModel::scroll) {
        putCode(node, scrollOracle, evmContract({l1Fee}));
        putWord(node, scrollOracle, Word(quint64{0}), Word(2 * gwei));
    }
    if (network.transfer == TransferModel::estimate) // So many operations that do nothing, one unit each.
        putCode(node, estimatedAddress, QByteArray(static_cast<qsizetype>(7 * place), char(EVMCode::here)) + '\0');
    node.call(QStringLiteral("anvil_mine"), {hexOf(1100), hexOf(2)});
    node.mine(8 * gwei * place / 1000, {});
}

} // namespace torvane

#include "LiquidStaking.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr int decimals = 18;

QString source() {
    return QStringLiteral("Ethereum mainnet, eth_call");
}

QString statusOf(qsizetype read, qsizetype wanted) {
    if (read == wanted)
        return QStringLiteral("live");
    return read == 0 ? QStringLiteral("unavailable") : QStringLiteral("partial");
}

/// A token's worth as the argument of a function that takes an amount.
QList<Word> oneToken(const QString& signature) {
    const bool takesAmount = signature.endsWith(QLatin1String("(uint256)"));
    return takesAmount ? QList<Word>{Word(quint64{1'000'000'000'000'000'000})} : QList<Word>();
}

/// None where it cannot be read.
Task<std::optional<double>> readAmount(ChainAtBlock chain, ContractCall question) {
    std::optional<double> amount;
    try {
        Task<Words> call = chain.call(question);
        const Words words = co_await call;
        amount = words.at(0).scaled(decimals);
    } catch (const std::exception&) {
        // The protocol's provenance tells it.
    }
    co_return amount;
}

SourceProvenance provenanceOf(const LiquidStakingProtocol& protocol, const RelayTable::Staking& row,
                              const QString& block) {
    const QString rate = row.rate.isEmpty() ? QStringLiteral("a rate of 1") : row.rate;
    QString detail = row.token + QStringLiteral(" totalSupply() and ") + rate + QStringLiteral(" at block ") + block;
    if (!protocol.tokenSupply)
        detail += QStringLiteral("; the supply could not be read");
    if (!protocol.exchangeRate)
        detail += QStringLiteral("; the rate could not be read");
    const bool hasReadRate = protocol.exchangeRate && !row.rate.isEmpty();
    const qsizetype read = (protocol.tokenSupply ? 1 : 0) + (hasReadRate ? 1 : 0);
    return {statusOf(read, row.rate.isEmpty() ? 1 : 2), source(), detail};
}

} // namespace

Task<LiquidStakingProtocol> readProtocol(ChainAtBlock chain, RelayTable::Staking row) {
    LiquidStakingProtocol protocol{};
    protocol.protocolName = row.protocol;
    protocol.token = row.token;
    Task<std::optional<double>> supply = readAmount(chain, contractCall(row.contract, u"totalSupply()"));
    protocol.tokenSupply = co_await supply;
    protocol.exchangeRate = 1;
    if (!row.rate.isEmpty()) {
        Task<std::optional<double>> rate =
            readAmount(chain, contractCall(row.rateContract, row.rate, oneToken(row.rate)));
        protocol.exchangeRate = co_await rate;
    }
    if (protocol.tokenSupply && protocol.exchangeRate)
        protocol.ethEquivalent = *protocol.tokenSupply * *protocol.exchangeRate;
    const QString block = QString::number(HexQuantity::fromText(chain.block).value);
    protocol.provenance = provenanceOf(protocol, row, block);
    co_return protocol;
}

LiquidStakingData liquidStaking(const QList<LiquidStakingProtocol>& protocols, const QString& block) {
    LiquidStakingData data{};
    data.protocols = protocols;
    if (protocols.isEmpty()) { // All of none would be "live".
        data.provenance = {QStringLiteral("unavailable"), source(),
                           QStringLiteral("the relay's table names no protocols")};
        return data;
    }
    qsizetype read = 0;
    double total = 0;
    for (const LiquidStakingProtocol& protocol : protocols) {
        total += protocol.ethEquivalent.value_or(0);
        read += protocol.ethEquivalent ? 1 : 0;
    }
    if (read > 0 && read == protocols.size()) // The sum of some would pass for the sum of all.
        data.totalEthEquivalent = total;
    const QString counts = QString::number(read) + QStringLiteral(" of ") + QString::number(protocols.size());
    data.provenance = {statusOf(read, protocols.size()), source(),
                       counts + QStringLiteral(" protocols read at block ") + block +
                           QStringLiteral("; total staked ETH is not available from execution-layer nodes, shares "
                                          "omitted")};
    return data;
}

} // namespace torvane

#include "RelayTable.h"

#include "Chain/JSONRPC.h"
#include "Contract.h"
#include "TableReader.h"

#include <QFile>
#include <QSet>
#include <QUrl>

namespace torvane {

namespace {

constexpr int mostRequestsAtOnce = 100;
constexpr double longestPause = 1440; // minutes: histories are of one day

std::string quoted(const QString& text) {
    return (QLatin1Char('"') + text + QLatin1Char('"')).toStdString();
}

QStringList readEndpoints(TableReader& table) {
    const QStringList endpoints = table.texts("endpoints");
    for (const QString& endpoint : endpoints) {
        const QUrl url(endpoint, QUrl::StrictMode);
        if (!url.isValid() || url.scheme() != QLatin1String("https") || url.host().isEmpty())
            table.fail("endpoints", quoted(endpoint) + " is not an https address");
    }
    return endpoints;
}

QString readAddress(TableReader& table, const char* key) {
    const QString address = table.text(key);
    if (!isChecksummedAddress(address))
        table.fail(key, "not an address with its checksum (EIP-55)");
    return address;
}

QString readOptionalAddress(TableReader& table, const char* key) {
    return table.has(key) ? readAddress(table, key) : QString();
}

/// A number, as eth_chainId answers it.
QString readChainId(TableReader& table) {
    return HexQuantity{static_cast<quint64>(table.wholeNumber("chain_id", 1, std::numeric_limits<qint64>::max()))}
        .toText();
}

/// A short text of ASCII: Starknet's ids are the bytes of a text, as one number.
QString readStarknetChainId(TableReader& table) {
    return QStringLiteral("0x") + QString::fromLatin1(table.text("chain_id").toLatin1().toHex());
}

RelayTable::Ethereum readEthereum(TableReader table) {
    RelayTable::Ethereum ethereum{readChainId(table), readEndpoints(table), readAddress(table, "price_feed"),
                                  readOptionalAddress(table, "price_pool")};
    table.requireNothingElse();
    return ethereum;
}

RelayTable::Network readNetwork(TableReader table) {
    const std::optional<TransferModel> transfer = fromRawValue<TransferModel>(table.text("transfer"));
    if (!transfer)
        table.fail("transfer", "none of the ways that the relay knows");
    const bool isStarknet = *transfer == TransferModel::starknet;
    RelayTable::Network network{table.text("name"), table.text("tag"),
                                isStarknet ? readStarknetChainId(table) : readChainId(table), readEndpoints(table),
                                *transfer};
    table.requireNothingElse();
    return network;
}

RelayTable::Staking readStaking(TableReader table) {
    RelayTable::Staking row{table.text("protocol"), table.text("token"), readAddress(table, "contract"), {}, {}};
    row.rateContract = row.contract;
    if (table.has("rate")) {
        row.rate = table.text("rate");
        if (!isSignature(row.rate))
            table.fail("rate", "not a function such as \"getRate()\"");
        if (table.has("rate_contract"))
            row.rateContract = readAddress(table, "rate_contract");
    }
    table.requireNothingElse();
    return row;
}

/// velisk knows networks by their names.
void requireDistinctNames(const QList<RelayTable::Network>& networks) {
    QSet<QString> names;
    for (const RelayTable::Network& network : networks) {
        if (names.contains(network.name))
            throw TableError("network " + quoted(network.name) + " is there twice");
        names.insert(network.name);
    }
}

} // namespace

RelayTable RelayTable::read(const QByteArray& toml) {
    TableReader root(toml);
    RelayTable table{};
    TableReader run = root.table("run");
    table.minutesBetweenRuns = run.number("minutes", 1, longestPause);
    run.requireNothingElse();
    TableReader requests = root.table("requests");
    table.requestsAtOnce = static_cast<int>(requests.wholeNumber("at_once", 1, mostRequestsAtOnce));
    table.requestsAtOncePerHost = static_cast<int>(requests.wholeNumber("at_once_per_host", 1, mostRequestsAtOnce));
    table.requestsPerSecondPerHost = requests.number("per_second_per_host", 0.1, 1000);
    requests.requireNothingElse();
    table.ethereum = readEthereum(root.table("ethereum"));
    for (const TableReader& network : root.tables("network"))
        table.networks.append(readNetwork(network));
    for (const TableReader& protocol : root.tables("staking"))
        table.staking.append(readStaking(protocol));
    root.requireNothingElse();
    requireDistinctNames(table.networks);
    return table;
}

QByteArray RelayTable::builtIn() {
    QFile file(QStringLiteral(":/torvane/networks.toml"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The built-in table is missing");
    return file.readAll();
}

} // namespace torvane

#include "Composition.h"

#include "LiquidStaking.h"
#include "Model/Format.h"
#include "Series.h"

namespace torvane {

namespace {

constexpr double swapGas = 150000;

/// As velisk works costs out when it has figures of its own.
double costUsd(double ethPrice, double baseFee, double gas) {
    return ethPrice * (baseFee * gas * 0.000000001);
}

PriceData priceData(const Reading& reading) {
    PriceData price{reading.price->usd, reading.price->change24h, reading.price->usd, {}};
    if (reading.poolPrice)
        price.sourceSpreadPct = spreadPercent(reading.price->usd, *reading.poolPrice);
    return price;
}

/// The day's. Part of it would pass for the whole: where nodes fail on the way, the earlier document has the rest.
QList<double> baseFees(const Reading& reading, const std::optional<Earlier>& earlier, const QDateTime& now,
                       double minutesBetweenRuns) {
    const BaseFeeHistory& read = reading.baseFeeHistory;
    if (read.isWhole)
        return read.points;
    std::optional<EarlierBaseFees> before;
    if (earlier && !earlier->snapshot.gas.history.isEmpty())
        before = {earlier->snapshot.gas.history, earlier->minutesAgo};
    return continuedBaseFees(before, read.points, reading.gas->baseFee, now, minutesBetweenRuns);
}

GasData gasData(const Reading& reading, const QList<double>& history) {
    const LiveGasQuote& gas = *reading.gas;
    return {gas.baseFee,
            gas.low,
            gas.avg,
            gas.high,
            history,
            costUsd(reading.price->usd, gas.baseFee, Format::transferGas),
            costUsd(reading.price->usd, gas.baseFee, swapGas)};
}

std::optional<EarlierRow> earlierRow(const std::optional<Earlier>& earlier, const QString& name) {
    const L2Entry* row = earlier ? findL2(name, earlier->snapshot.l2) : nullptr;
    return row ? std::optional(EarlierRow{*row, earlier->minutesAgo}) : std::nullopt;
}

L2Entry networkRow(const RelayTable::Network& network, const NetworkReading& reading,
                   const std::optional<EarlierRow>& earlier, double ethPrice, double minutesBetweenRuns) {
    L2Entry row{};
    row.name = network.name;
    row.tag = network.tag;
    row.costGwei = reading.priceGwei;
    if (reading.transferEther)
        row.costUsd = *reading.transferEther * ethPrice;
    const std::optional<Series> series = continued(earlier, reading.priceGwei, minutesBetweenRuns);
    if (series) {
        row.history = series->points;
        row.historyWindowMinutes = series->windowMinutes;
    }
    // A series that starts anew has nothing to be compared with.
    const std::optional<QList<double>> usual = series ? earlier->row.history : std::nullopt;
    row.status = congestion(reading.priceGwei, usual.value_or(QList<double>()));
    if (!reading.endpoints.isEmpty())
        row.rpc = reading.endpoints;
    row.blockTimeSec = reading.blockSeconds;
    return row;
}

QString networkLine(const L2Entry& row, const NetworkReading& reading, qsizetype nodes) {
    QString line = row.name + QStringLiteral(": ");
    if (row.costGwei)
        line += Format::gwei(*row.costGwei) + QStringLiteral(" gwei, ");
    if (row.costUsd)
        line += Format::usd(*row.costUsd) + QStringLiteral(" a transfer, ");
    line += row.status;
    if (row.rpc && row.rpc->size() < nodes)
        line += QStringLiteral(", %1 of %2 nodes").arg(QString::number(row.rpc->size()), QString::number(nodes));
    if (!reading.trouble.isEmpty())
        line += QStringLiteral(" (") + reading.trouble + QLatin1Char(')');
    return line;
}

QString ethereumLine(const Reading& reading, const Snapshot& snapshot) {
    QString line = QStringLiteral("Ethereum: block %1, base fee %2 gwei, ETH %3 (%4)")
                       .arg(QString::number(reading.gas->blockNumber), Format::gwei(snapshot.gas.baseFee),
                            Format::ethPrice(snapshot.price.eth), Format::pct(snapshot.price.change24h));
    if (!reading.poolPrice)
        line += QStringLiteral(", no second source of the price");
    line += QStringLiteral(", %1 points of base fees").arg(QString::number(snapshot.gas.history.size()));
    if (!reading.baseFeeHistory.isWhole)
        line += QStringLiteral(", of which nodes gave only %1 now")
                    .arg(QString::number(reading.baseFeeHistory.points.size()));
    return line;
}

} // namespace

QStringList summary(const Reading& reading, const RelayTable& table, const Snapshot& snapshot) {
    QStringList lines{ethereumLine(reading, snapshot)};
    for (qsizetype i = 0; i < table.networks.size(); ++i)
        lines.append(networkLine(snapshot.l2[i], reading.networks[i], table.networks[i].endpoints.size()));
    return lines << QStringLiteral("Staking: ") + snapshot.staking.liquidStaking.provenance.detail;
}

Snapshot composed(const Reading& reading, const RelayTable& table, const std::optional<Earlier>& earlier,
                  const QDateTime& generatedAt) {
    QList<L2Entry> rows;
    for (qsizetype i = 0; i < table.networks.size(); ++i) {
        const RelayTable::Network& network = table.networks[i];
        rows.append(networkRow(network, reading.networks[i], earlierRow(earlier, network.name), reading.price->usd,
                               table.minutesBetweenRuns));
    }
    return {documentTime(generatedAt),
            priceData(reading),
            gasData(reading, baseFees(reading, earlier, generatedAt, table.minutesBetweenRuns)),
            rows,
            {liquidStaking(reading.protocols, QString::number(reading.block))}};
}

QString documentTime(const QDateTime& time) {
    return time.toUTC().toString(Qt::ISODate);
}

} // namespace torvane

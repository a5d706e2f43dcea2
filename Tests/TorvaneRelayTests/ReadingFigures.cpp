#include "ReadingFigures.h"

#include <QHash>

namespace torvane {

namespace {

/// Twelve digits: more than any rounding of ours disturbs.
QString text(const std::optional<double>& value) {
    return value ? QString::number(*value, 'g', 12) : QStringLiteral("none");
}

} // namespace

Figures figuresOf(const NetworkReading& reading) {
    return {{QStringLiteral("price"), text(reading.priceGwei)},
            {QStringLiteral("cost"), text(reading.transferEther)},
            {QStringLiteral("seconds"), text(reading.blockSeconds)},
            {QStringLiteral("endpoints"),
             reading.endpoints.isEmpty() ? QStringLiteral("none") : QString::number(reading.endpoints.size())}};
}

Figures figuresOf(const Reading& reading, const RelayTable& table) {
    Figures figures;
    const auto add = [&figures](const char* name, const std::optional<double>& value) {
        figures.insert(QLatin1String(name), text(value));
    };
    const auto& price = reading.price;
    const auto& gas = reading.gas;
    add("ether", price ? std::optional(price->usd) : std::nullopt);
    add("change", price ? std::optional(price->change24h) : std::nullopt);
    add("pool", reading.poolPrice);
    add("base fee", gas ? std::optional(gas->baseFee) : std::nullopt);
    add("low", gas ? std::optional(gas->low) : std::nullopt);
    add("average", gas ? std::optional(gas->avg) : std::nullopt);
    add("high", gas ? std::optional(gas->high) : std::nullopt);
    const QList<double>& history = reading.baseFeeHistory.points;
    add("points", history.isEmpty() ? std::nullopt : std::optional(static_cast<double>(history.size())));
    for (qsizetype i = 0; i < table.staking.size(); ++i) {
        figures.insert(table.staking[i].token + QStringLiteral(" supply"), text(reading.protocols[i].tokenSupply));
        figures.insert(table.staking[i].token + QStringLiteral(" rate"), text(reading.protocols[i].exchangeRate));
        figures.insert(table.staking[i].token + QStringLiteral(" ether"), text(reading.protocols[i].ethEquivalent));
    }
    for (qsizetype i = 0; i < table.networks.size(); ++i) {
        const Figures row = figuresOf(reading.networks[i]);
        for (auto figure = row.cbegin(); figure != row.cend(); ++figure)
            figures.insert(table.networks[i].name + QLatin1Char(' ') + figure.key(), figure.value());
    }
    return figures;
}

QStringList differing(const Figures& first, const Figures& second) {
    QStringList names;
    for (const QString& name : first.keys()) {
        if (first.value(name) != second.value(name))
            names.append(name);
    }
    return names;
}

QStringList missingWithout(const QString& question) {
    const QStringList price{QStringLiteral("change"), QStringLiteral("ether")};
    const QStringList gas{QStringLiteral("average"), QStringLiteral("base fee"), QStringLiteral("high"),
                          QStringLiteral("low")};
    const QString name = question.section(QLatin1Char('('), 0, 0).section(QLatin1Char(' '), 0, 0);
    static const QHash<QString, QString> tokens{
        {QStringLiteral("totalSupply() of 0xae78"), QStringLiteral("rETH supply")},
        {QStringLiteral("getExchangeRate() of 0xae78"), QStringLiteral("rETH rate")},
        {QStringLiteral("totalSupply() of 0xae7a"), QStringLiteral("stETH supply")},
        {QStringLiteral("totalSupply() of 0xd5F7"), QStringLiteral("mETH supply")},
        {QStringLiteral("mETHToETH(uint256) of 0xe3cB"), QStringLiteral("mETH rate")}};
    if (tokens.contains(question))
        return QStringList{tokens[question].section(QLatin1Char(' '), 0, 0) + QStringLiteral(" ether"),
                           tokens[question]};
    if (name == QLatin1String("decimals") || name.endsWith(QLatin1String("RoundData")))
        return price;
    if (name == QLatin1String("observe"))
        return {QStringLiteral("pool")};
    if (question == QLatin1String("eth_feeHistory earlier"))
        return {QStringLiteral("points")};
    if (question == QLatin1String("eth_feeHistory latest"))
        return gas;
    return {}; // Without a chain or a block there is nothing at all.
}

QStringList missingInRowWithout(const QString& question) {
    if (question.contains(QLatin1String("earlier")) || question == QLatin1String("eth_getBlockByNumber latest"))
        return {QStringLiteral("seconds")};
    if (question.contains(QLatin1String("estimateGas")) || question.startsWith(QLatin1String("get")))
        return {QStringLiteral("cost")};
    return {QStringLiteral("cost"), QStringLiteral("endpoints"), QStringLiteral("price"), QStringLiteral("seconds")};
}

} // namespace torvane

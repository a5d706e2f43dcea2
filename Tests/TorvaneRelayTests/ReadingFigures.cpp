#include "ReadingFigures.h"

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
    const QList<double>& history = reading.baseFeeHistory;
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

} // namespace torvane

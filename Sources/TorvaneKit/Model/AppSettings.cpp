#include "Model/AppSettings.h"

#include "Model/Snapshot.h"

namespace torvane {

std::optional<double> fixedInterval(LiveGasCadence cadence) {
    switch (cadence) {
    case LiveGasCadence::perBlock:
        return std::nullopt;
    case LiveGasCadence::fifteen:
        return 15;
    case LiveGasCadence::thirty:
        return 30;
    case LiveGasCadence::sixty:
        return 60;
    }
    Q_UNREACHABLE();
}

double value(BadgeSource source, const GasData& gas) {
    switch (source) {
    case BadgeSource::baseFee:
        return gas.baseFee;
    case BadgeSource::low:
        return gas.low;
    case BadgeSource::average:
        return gas.avg;
    case BadgeSource::high:
        return gas.high;
    }
    Q_UNREACHABLE();
}

BadgeChain BadgeChain::fromStorageValue(const QString& text) {
    const bool isEthereum = text.isEmpty() || text == QLatin1StringView("ethereum");
    return isEthereum ? ethereum() : l2(text);
}

QString BadgeChain::title() const {
    return m_name.value_or(QStringLiteral("Ethereum"));
}

QString BadgeChain::storageValue() const {
    return m_name.value_or(QStringLiteral("ethereum"));
}

void AppSettings::toggle(const QString& network) {
    QSet<QString> disabled = disabledL2;
    if (!disabled.remove(network))
        disabled.insert(network);
    disabledL2 = disabled;
}

} // namespace torvane

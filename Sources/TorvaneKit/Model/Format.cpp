#include "Model/Format.h"

#include "Support/Clock.h"
#include "Support/FixedPoint.h"
#include "Support/ISO8601.h"

#include <QLocale>

#include <cmath>

namespace torvane::Format {

namespace {

const QString emDash = QStringLiteral("—");

/// Removes trailing zeros after a point, and the point itself when nothing is left behind it.
QString trimZeros(QString text) {
    if (!text.contains(QLatin1Char('.')))
        return text;
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

/// Prices below 0.001 gwei keep two significant digits, however small they are.
QString tinyGwei(double value) {
    if (std::isinf(value))
        qFatal("Negative infinity is no gas price");
    const int digits = static_cast<int>(std::ceil(-std::log10(std::abs(value))) + 1);
    return trimZeros(fixedPoint(value, digits));
}

QString ethereumValue(double price, Denomination denom, double ethPrice) {
    return denom == Denomination::gwei ? gwei(price) : txUsd(price, ethPrice, transferGas);
}

} // namespace

QString gwei(double value) {
    if (value >= 100)
        return fixedPoint(value, 0);
    if (value >= 1)
        return fixedPoint(value, 1); // The trailing zero stays in this band, so that the width is steady.
    if (value == 0)
        return QStringLiteral("0");
    if (value < 0.001)
        return tinyGwei(value);
    return trimZeros(fixedPoint(value, 3));
}

std::pair<QString, QString> rangeLabels(double low, double high) {
    const std::pair labels{gwei(low), gwei(high)};
    if (low == high || labels.first != labels.second)
        return labels;
    for (int precision = 3; precision <= 9; ++precision) {
        const std::pair finer{trimZeros(fixedPoint(low, precision)), trimZeros(fixedPoint(high, precision))};
        if (finer.first != finer.second)
            return finer;
    }
    return labels;
}

QString usd(double value) {
    if (value >= 100)
        return QLatin1Char('$') + fixedPoint(value, 0);
    if (value >= 0.01)
        return QLatin1Char('$') + fixedPoint(value, 2);
    if (value > 0)
        return QStringLiteral("<$0.01");
    return QStringLiteral("$0.00");
}

QString ethPrice(double value) {
    return QLatin1Char('$') + grouped(fixedPoint(value, 2), QLocale());
}

QString pct(double value) {
    // Adding zero turns -0.0 into 0.0: zero has a plus sign, and never both.
    return (value >= 0 ? QStringLiteral("+") : QString()) + fixedPoint(value + 0.0, 1) + QLatin1Char('%');
}

QString txUsd(double gwei, double ethPrice, double gas) {
    return usd(ethPrice * (gwei * 1e-9 * gas));
}

QString estimateBlock(const QString& at) {
    // The merge: block 15537393 at this Unix time, and one block every twelve seconds since.
    constexpr double mergeTime = 1663224179;
    constexpr double mergeBlock = 15537393;
    const QDateTime time = parseInternetDateTime(at).value_or(Clock::now());
    const double seconds = static_cast<double>(time.toMSecsSinceEpoch()) / 1000;
    return grouped(fixedPoint(std::floor((seconds - mergeTime) / 12) + mergeBlock, 0), QLocale());
}

QString block(quint64 value) {
    return QLocale().toString(value);
}

QString badgeValue(const BadgeChain& chain, const GasData& gas, const QList<L2Entry>& l2, BadgeSource source,
                   Denomination denom, double ethPrice) {
    if (chain.isEthereum())
        return ethereumValue(value(source, gas), denom, ethPrice);
    const L2Entry* entry = findL2(chain.title(), l2);
    return entry ? l2Value(*entry, denom) : emDash;
}

QString l2Value(const L2Entry& entry, Denomination denom) {
    // The unit stands behind Layer 2 prices alone: Ethereum's bare figure is the one that everybody reads as gwei.
    if (denom == Denomination::gwei)
        return entry.costGwei ? gwei(*entry.costGwei) + QStringLiteral(" gwei") : emDash;
    return entry.costUsd ? usd(*entry.costUsd) : emDash;
}

std::optional<QString> badgeTag(const BadgeChain& chain, const QList<L2Entry>& l2) {
    if (chain.isEthereum())
        return std::nullopt;
    const L2Entry* entry = findL2(chain.title(), l2);
    return entry ? std::optional(entry->tag) : std::nullopt;
}

} // namespace torvane::Format

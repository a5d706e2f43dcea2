#include "Views/PopoverText.h"

#include "Model/Format.h"

namespace torvane {

namespace {

const QString emDash = QStringLiteral("—");

constexpr qint64 secondMs = 1000;
constexpr qint64 minuteMs = 60 * secondMs;
constexpr qint64 oldSeconds = 600;

} // namespace

Figure headline(const std::optional<Snapshot>& snapshot, Denomination denom) {
    if (!snapshot)
        return {emDash, {}};
    if (denom == Denomination::usd)
        return {Format::usd(snapshot->price.eth), {}};
    return {Format::gwei(snapshot->gas.baseFee), QStringLiteral("gwei")};
}

QString blockCaption(const std::optional<quint64>& live, const Snapshot& snapshot) {
    const QString number = live ? Format::block(*live) : QLatin1Char('~') + Format::estimateBlock(snapshot.generatedAt);
    return QStringLiteral("Mainnet · block ") + number;
}

QString cost(const std::optional<double>& usd) {
    return usd ? Format::usd(*usd) : emDash;
}

QList<L2Entry> enabledL2(const QList<L2Entry>& l2, const QSet<QString>& disabled) {
    QList<L2Entry> enabled = l2;
    enabled.removeIf([&disabled](const L2Entry& entry) { return disabled.contains(entry.name); });
    return enabled;
}

const L2Entry* selectedL2(const QList<L2Entry>& l2, const BadgeChain& chain) {
    return chain.isEthereum() ? nullptr : findL2(chain.title(), l2);
}

QString primary(const L2Entry& entry, Denomination denom) {
    return Format::l2Value(entry, denom);
}

QString updatedText(const std::optional<QDateTime>& lastUpdated, const QDateTime& now) {
    if (!lastUpdated)
        return emDash;
    const qint64 minutes = lastUpdated->msecsTo(now) / minuteMs;
    return minutes > 0 ? QString::number(minutes) + QStringLiteral("m ago") : QStringLiteral("just now");
}

bool isOld(const std::optional<QDateTime>& lastUpdated, const QDateTime& now) {
    return lastUpdated && lastUpdated->msecsTo(now) / secondMs > oldSeconds;
}

qint64 untilNextAge(const QDateTime& lastUpdated, const QDateTime& now) {
    const qint64 age = lastUpdated.msecsTo(now);
    if (age < minuteMs)
        return minuteMs - age;
    if (age / secondMs == oldSeconds)
        return secondMs - age % secondMs;
    return minuteMs - age % minuteMs;
}

} // namespace torvane

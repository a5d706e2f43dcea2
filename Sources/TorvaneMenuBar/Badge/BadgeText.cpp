#include "Badge/BadgeText.h"

#include "Model/Format.h"

namespace torvane {

namespace {

/// Which figure it is and in which unit: "Low: 12.3 gwei", "Low: $0.79 a transfer".
QString ethereumDetail(const QString& figure, const AppSettings& settings) {
    const QString unit = settings.denom == Denomination::gwei ? QStringLiteral("gwei") : QStringLiteral("a transfer");
    return rawValue(settings.badgeSource.value()) + QStringLiteral(": ") + figure + QLatin1Char(' ') + unit;
}

} // namespace

BadgeLook badgeLook(const std::optional<Snapshot>& snapshot, const AppSettings& settings) {
    const BadgeChain& chain = settings.badgeChain;
    if (!snapshot)
        return {{}, chain.title(), QStringLiteral("No figures yet")};
    const QString figure = Format::badgeValue(chain, snapshot->gas, snapshot->l2, settings.badgeSource, settings.denom,
                                              snapshot->price.eth);
    return {settings.menuNumber ? figure : QString(), chain.title(),
            chain.isEthereum() ? ethereumDetail(figure, settings) : figure};
}

} // namespace torvane

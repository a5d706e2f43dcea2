#include "Views/MenuBarLabel.h"

#include "Design/DesignSystem.h"
#include "Model/Format.h"
#include "Support/FixedPoint.h"

#include <cmath>

namespace torvane {

namespace {

QString keyOf(const MenuBarBadgeIcon& icon) {
    return MenuBarLabel::cacheKey(icon.colorIcon, icon.chain, icon.size, icon.dotColor, icon.dotSize);
}

/// The pixels of a badge's side at the usual scale; 0 where it has none.
int usualPixels(const MenuBarBadgeIcon& icon) {
    const double pixels = std::ceil(icon.side() * MenuBarLabel::rasterScale);
    return pixels > 0 && pixels < 1e6 ? static_cast<int>(pixels) : 0;
}

BadgeRaster drawn(const MenuBarBadgeIcon& icon, int pixels) {
    return {icon.rasterized(pixels), !icon.colorIcon};
}

} // namespace

MenuBarLabel::Body MenuBarLabel::body(const std::optional<Snapshot>& snapshot, const AppSettings& settings) {
    return {badgeLeading(snapshot, settings), figureText(snapshot, settings)};
}

std::optional<MenuBarLabel::Leading> MenuBarLabel::badgeLeading(const std::optional<Snapshot>& snapshot,
                                                                const AppSettings& settings) {
    return leading(badgeRaster(badgeIcon(snapshot, settings)), settings.badgeChain,
                   snapshot ? snapshot->l2 : QList<L2Entry>());
}

std::optional<MenuBarLabel::Leading> MenuBarLabel::leading(const BadgeRaster& raster, const BadgeChain& chain,
                                                           const QList<L2Entry>& l2) {
    if (!raster.image.isNull())
        return raster;
    return Format::badgeTag(chain, l2);
}

QColor MenuBarLabel::badgeStatusColor(const Snapshot& snapshot, const BadgeChain& chain) {
    if (chain.isEthereum())
        return color(gasLevel(snapshot.gas.baseFee));
    const L2Entry* network = findL2(chain.title(), snapshot.l2);
    return l2StatusColor(network ? network->status : QStringLiteral("Unavailable"));
}

std::optional<QColor> MenuBarLabel::badgeDotColor(const std::optional<Snapshot>& snapshot,
                                                  const AppSettings& settings) {
    if (!snapshot || !settings.menuDot)
        return std::nullopt;
    return badgeStatusColor(*snapshot, settings.badgeChain);
}

std::optional<QString> MenuBarLabel::figureText(const std::optional<Snapshot>& snapshot, const AppSettings& settings) {
    if (!snapshot || !settings.menuNumber)
        return std::nullopt;
    return Format::badgeValue(settings.badgeChain, snapshot->gas, snapshot->l2, settings.badgeSource, settings.denom,
                              snapshot->price.eth);
}

QFont MenuBarLabel::font() {
    return Fonts::mono(fontSize, QFont::Medium);
}

MenuBarBadgeIcon MenuBarLabel::badgeIcon(const std::optional<Snapshot>& snapshot, const AppSettings& settings) {
    return {settings.badgeChain->title(), markSize, badgeDotColor(snapshot, settings), dotSize, settings.colorIcon};
}

BadgeRaster MenuBarLabel::badgeRaster(const MenuBarBadgeIcon& icon) {
    return MenuBarRasterCache::badgeIcon(keyOf(icon), [&icon] { return drawn(icon, usualPixels(icon)); });
}

BadgeRaster MenuBarLabel::badgeRaster(const MenuBarBadgeIcon& icon, int pixels) {
    if (pixels == usualPixels(icon))
        return badgeRaster(icon);
    return MenuBarRasterCache::badgeIcon(MenuBarRasterCache::pixelKey(keyOf(icon), pixels),
                                         [&icon, pixels] { return drawn(icon, pixels); });
}

QString MenuBarLabel::cacheKey(bool colorIcon, const QString& chain, double size, const std::optional<QColor>& dot,
                               double dotDiameter) {
    QString key = colorIcon ? QStringLiteral("c_") : QStringLiteral("m_");
    key += chain + QLatin1Char('_') + fixedPoint(size * 1000, 0);
    return dot ? key + QStringLiteral("_on_") + MenuBarRasterCache::colorKey(*dot, dotDiameter)
               : key + QStringLiteral("_off");
}

} // namespace torvane

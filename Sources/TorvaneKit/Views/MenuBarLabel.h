#pragma once

#include "Model/AppSettings.h"
#include "Model/Snapshot.h"
#include "Views/MenuBarBadgeIcon.h"
#include "Views/MenuBarRasterCache.h"

#include <QFont>

#include <optional>
#include <variant>

/// What stands in the panel: the badge, and beside it the figure. Functions of what is known and of what the user has
/// chosen; each kind of panel shows their results in its own way.
namespace torvane::MenuBarLabel {

inline constexpr double markSize = 15;   ///< points
inline constexpr double dotSize = 4.5;   ///< points
inline constexpr double fontSize = 13;   ///< points
inline constexpr double rasterScale = 3; ///< pixels for a point

/// A picture, or a text where none could be drawn.
using Leading = std::variant<BadgeRaster, QString>;

/// The whole label.
struct Body {
    std::optional<Leading> leading;
    std::optional<QString> figure;
};

Body body(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

/// The chosen network's badge.
std::optional<Leading> badgeLeading(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

/// The picture, or where there is none the network's short name, if it has one.
std::optional<Leading> leading(const BadgeRaster& raster, const BadgeChain& chain, const QList<L2Entry>& l2);

/// By the level of Ethereum's base fee, or by the status word of the chosen network; that of "Unavailable" for one that
/// the snapshot does not have.
QColor badgeStatusColor(const Snapshot& snapshot, const BadgeChain& chain);

/// None while nothing is known, and when the user wants no dot.
std::optional<QColor> badgeDotColor(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

/// The chosen network's figure; none while nothing is known, and when the user wants none.
std::optional<QString> figureText(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

/// Of the figure, and of the text in place of a picture.
QFont font();

/// The badge as it looks now, not drawn yet.
MenuBarBadgeIcon badgeIcon(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

/// The badge drawn at three pixels for a point, from the cache.
BadgeRaster badgeRaster(const MenuBarBadgeIcon& icon);

/// The same in so many pixels each way, from the cache too.
BadgeRaster badgeRaster(const MenuBarBadgeIcon& icon, int pixels);

/// Says all that a badge's look depends on: "c_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500".
QString cacheKey(bool colorIcon, const QString& chain, double size, const std::optional<QColor>& dot, double dotSize);

} // namespace torvane::MenuBarLabel

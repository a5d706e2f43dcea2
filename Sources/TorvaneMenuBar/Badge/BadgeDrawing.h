#pragma once

#include "Badge/BadgeSurface.h"
#include "Badge/FigureOutline.h"

#include <QImage>
#include <QList>

namespace torvane {

/// Where the parts of a square badge lie, in its pixels. The figure is empty when there is none, or none that could be
/// read at this size: the mark then has the square to itself.
struct SquareLayout {
    QRect mark; ///< with the mark's own padding
    QPainterPath figure;
};

SquareLayout squareLayout(const FigureOutline& figure, int size, bool hasPlate);

/// A square badge of `size` pixels: the mark above, the figure below it.
QImage squareBadge(const BadgePicture& picture, const BadgeInk& ink, int size);

/// One for each usual size of icons.
QList<QImage> squareBadges(const BadgePicture& picture, const BadgeInk& ink);

/// The height of the mark with its padding, and of the badge with the figure beside the mark.
inline constexpr int badgePoints = 18;

/// The size of the badge with the figure beside the mark, in pixels, at `scale` pixels for a point. One that is too
/// long is left out.
QSize wideBadgeSize(const BadgePicture& whole, const BadgeInk& ink, double scale);

QImage wideBadge(const BadgePicture& whole, const BadgeInk& ink, double scale);

/// An SVG picture of the badge in one colour that panels replace by their own: those on GTK by the file's name, which
/// must end in "-symbolic.svg", Plasma by the style within.
QByteArray symbolicBadge(const BadgePicture& picture, const QColor& color);

} // namespace torvane

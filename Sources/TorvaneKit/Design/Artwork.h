#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>
#include <QString>

#include <algorithm>
#include <cmath>
#include <concepts>

/// Drawing in the box of 24 by 24 units that all marks and symbols are made for. Main thread only.
namespace torvane::Artwork {

inline constexpr double boxSide = 24;

/// The radius of a tile's corners, in units of the box.
inline constexpr double tileRadius = 0.29 * boxSide;

/// The path of SVG path data, parsed once and kept; for data of the program's own, of which there are few. As in SVG,
/// what lies inside goes by the winding number unless told otherwise.
QPainterPath path(const QString& data, Qt::FillRule rule = Qt::WindingFill);

/// A rounded square that fills the box.
QPainterPath tile();

/// Lets `draw` draw in units of the box, which is laid over the largest square in the middle of the rectangle. Where
/// the rectangle is empty or not finite, nothing is drawn.
template <std::invocable Draw>
void inBox(QPainter& painter, const QRectF& rectangle, Draw draw) {
    const double side = std::min(rectangle.width(), rectangle.height());
    if (!std::isfinite(side) || side <= 0)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rectangle.center() - QPointF(side, side) / 2);
    painter.scale(side / boxSide, side / boxSide);
    draw();
    painter.restore();
}

} // namespace torvane::Artwork

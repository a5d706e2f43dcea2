#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <QString>

class QPainter;

/// A network's mark in one colour, for template images: what shows it is its shape alone.
namespace torvane::ChainGlyph {

/// Its shape in a box of 24 by 24 units. A network without artwork is a tile from which its first letter is cut out.
QPainterPath path(const QString& name);

/// In the largest square in the middle of the rectangle.
void paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& foreground);

} // namespace torvane::ChainGlyph

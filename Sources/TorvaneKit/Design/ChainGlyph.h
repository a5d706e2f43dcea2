#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

/// A network's mark in one colour, for template images: what shows it is its shape alone.
namespace torvane::ChainGlyph {

/// In the largest square in the middle of the rectangle. A network without artwork is a tile from which its first
/// letter is cut out.
void paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& foreground);

} // namespace torvane::ChainGlyph

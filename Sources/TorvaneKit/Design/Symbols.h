#pragma once

#include <QColor>
#include <QHash>
#include <QRectF>
#include <QString>

class QPainter;

namespace torvane {

/// A sign of the windows in one colour: SVG path data in a box of 24 by 24 units. Either path may be empty.
struct Symbol {
    QString filled;
    QString stroked;           ///< with round ends and corners
    double strokeWidth;        ///< in units of the box
    bool alignsMiddle = false; ///< its lines run through the middle of the box, and are moved onto whole pixels there
};

namespace Symbols {

const QHash<QString, Symbol>& byName();

/// In the largest square in the middle of the rectangle. A name that is not known draws nothing.
void paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& color);

} // namespace Symbols
} // namespace torvane

#pragma once

#include <QColor>
#include <QList>
#include <QRectF>

class QPainter;

namespace torvane {

/// A coat of paint on a rounded rectangle: a line along the inside of its edge, or all that lies within. Sizes in
/// device-independent pixels.
struct Coat {
    double inset; ///< from the rectangle's edge
    double width; ///< of the line; none paints all within
    QRgb color;

    bool operator==(const Coat&) const = default;
};

/// Paints the coats one upon the other. Where the rectangle's edges lie between whole pixels of the screen, nothing is
/// filled but rectangles, and the corners are copied from a small drawing that is kept: Qt fills what is round row by
/// row, hands about a hundred rows to other threads and waits for them.
void paintRoundedRectangle(QPainter& painter, const QRectF& rectangle, double radius, const QList<Coat>& coats);

} // namespace torvane

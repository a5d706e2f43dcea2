#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>

namespace torvane {

/// How a line chart is inked. Lengths in device-independent pixels.
struct ChartInk {
    QColor color;
    double lineWidth;
    double areaOpacity; ///< of what lies between the line and the bottom edge
};

/// A line chart as pixels of a screen of this scale: straight lines through points from left to right, with round
/// joints, upon the area below. A general stroker takes ten times as long for lines of hundreds of points, and a window
/// with many such charts waits for them when it opens.
QImage chartRaster(const QList<QPointF>& points, QSizeF box, double scale, const ChartInk& ink);

} // namespace torvane

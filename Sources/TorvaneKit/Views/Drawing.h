#pragma once

#include <QColor>
#include <QRectF>

class QPainter;
class QWidget;

/// Strokes and fills that the windows' controls share. Sizes in device-independent pixels.
namespace torvane {

/// Width of every border.
inline constexpr double hairline = 0.5;

/// What the parts of a disabled row are drawn with.
inline constexpr double disabledOpacity = 0.45;

double opacityOf(const QWidget& widget);

/// Below what stands off its ground.
QColor shadow(double opacity);

/// A rounded rectangle, with a border inside its edge.
void drawRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill, const QColor& border);

/// The same without a border.
void fillRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill);

} // namespace torvane

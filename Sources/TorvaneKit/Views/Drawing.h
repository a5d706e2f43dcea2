#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

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

/// One line of text in the painter's font and pen, at the leading edge or in the middle of its room; it ends in "…"
/// where there is not enough of it.
void drawLine(QPainter& painter, const QRect& room, const QString& text, Qt::Alignment alignment = Qt::AlignLeft);

} // namespace torvane

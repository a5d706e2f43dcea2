#include "Views/Card.h"

#include "Design/DesignSystem.h"

#include <QPainter>

namespace torvane {

namespace {

constexpr double radius = 9;
constexpr double border = 0.5;

} // namespace

void paintCard(QPainter& painter, const QRectF& rectangle) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(Palette::glassFill));
    painter.drawRoundedRect(rectangle, radius, radius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(Palette::line2), border));
    const double half = border / 2;
    painter.drawRoundedRect(rectangle.adjusted(half, half, -half, -half), radius - half, radius - half);
}

} // namespace torvane

#include "Views/Card.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"

namespace torvane {

namespace {

constexpr double radius = 9;

} // namespace

void paintCard(QPainter& painter, const QRectF& rectangle) {
    drawRoundedRect(painter, rectangle, radius, Palette::glassFill, Palette::line2);
}

} // namespace torvane

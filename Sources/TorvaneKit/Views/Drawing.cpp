#include "Views/Drawing.h"

#include "Design/DesignSystem.h"
#include "Design/RoundedRectangle.h"

#include <QPainter>
#include <QWidget>

namespace torvane {

double opacityOf(const QWidget& widget) {
    return widget.isEnabled() ? 1 : disabledOpacity;
}

QColor shadow(double opacity) {
    QColor color = Palette::ink.in(Appearance::light); // Dark in either appearance, as shadows are.
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

void drawRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill, const QColor& border) {
    constexpr double middle = hairline / 2; // The fill reaches half below the border, as below any stroke.
    paintRoundedRectangle(painter, rect, radius, {{middle, 0, fill.rgba()}, {0, hairline, border.rgba()}});
}

void fillRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill) {
    paintRoundedRectangle(painter, rect, radius, {{0, 0, fill.rgba()}});
}

void drawLine(QPainter& painter, const QRect& room, const QString& text, Qt::Alignment alignment) {
    const QString line = painter.fontMetrics().elidedText(text, Qt::ElideRight, room.width());
    painter.drawText(room, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextSingleLine, line);
}

} // namespace torvane

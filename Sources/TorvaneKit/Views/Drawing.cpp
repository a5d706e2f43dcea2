#include "Views/Drawing.h"

#include "Design/DesignSystem.h"

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
    constexpr double inset = hairline / 2; // A stroke lies half to either side of its path.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(QPen(border, hairline));
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

void fillRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
}

void drawLine(QPainter& painter, const QRect& room, const QString& text, Qt::Alignment alignment) {
    const QString line = painter.fontMetrics().elidedText(text, Qt::ElideRight, room.width());
    painter.drawText(room, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextSingleLine, line);
}

} // namespace torvane

#include "Views/StatusDot.h"

#include <QPainter>

#include <cmath>

namespace torvane {

StatusDot::StatusDot(const QColor& color, double size, QWidget* parent)
    : QWidget(parent)
    , m_color(color)
    , m_size(size) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StatusDot::paint(QPainter& painter, QPointF centre, const QColor& color, double size) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(centre, size / 2, size / 2);
}

QSize StatusDot::sizeHint() const {
    const int side = static_cast<int>(std::ceil(m_size));
    return {side, side};
}

void StatusDot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paint(painter, QRectF(rect()).center(), m_color, m_size);
}

} // namespace torvane

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

void StatusDot::setColor(const QColor& color) {
    if (color == m_color)
        return;
    m_color = color;
    update();
}

QSize StatusDot::sizeHint() const {
    const int side = static_cast<int>(std::ceil(m_size));
    return {side, side};
}

void StatusDot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color);
    painter.drawEllipse(QRectF(rect()).center(), m_size / 2, m_size / 2);
}

} // namespace torvane

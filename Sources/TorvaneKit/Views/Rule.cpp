#include "Views/Rule.h"

#include <QPainter>

#include <cmath>

namespace torvane {

Rule::Rule(int inset, const DynamicColor& color, QWidget* parent)
    : QWidget(parent)
    , m_inset(inset)
    , m_color(color) {
    setFixedHeight(1);
}

void Rule::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing); // Without it, half a pixel would be none or a whole one.
    // From a whole pixel of the screen on: at a scale such as 1.5 the widget may begin between two, and pale over both.
    const QTransform device = painter.deviceTransform();
    const double top = (std::ceil(device.dy()) - device.dy()) / device.m22();
    painter.fillRect(QRectF(m_inset, top, width() - 2 * m_inset, 0.5), m_color);
}

} // namespace torvane

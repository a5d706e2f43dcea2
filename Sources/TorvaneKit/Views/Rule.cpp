#include "Views/Rule.h"

#include "Design/DesignSystem.h"

#include <QPainter>

namespace torvane {

Rule::Rule(int inset, QWidget* parent)
    : QWidget(parent)
    , m_inset(inset) {
    setFixedHeight(1);
}

void Rule::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing); // Without it, half a pixel would be none or a whole one.
    painter.fillRect(QRectF(m_inset, 0, width() - 2 * m_inset, 0.5), Palette::line2);
}

} // namespace torvane

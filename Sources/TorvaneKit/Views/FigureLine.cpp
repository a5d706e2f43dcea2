#include "Views/FigureLine.h"

#include "Design/DesignSystem.h"
#include "Views/HiddenText.h"

#include <cmath>

namespace torvane {

namespace {

constexpr double gap = 4;

} // namespace

Figure Figure::of(const QString& text) {
    return {text.section(QLatin1Char(' '), 0, 0), text.section(QLatin1Char(' '), 1)};
}

QString Figure::text() const {
    return unit.isEmpty() ? value : value + QLatin1Char(' ') + unit;
}

FigureLine::FigureLine(const QFont& valueFont, const QFont& unitFont, int height, int baseline, QWidget* parent)
    : QWidget(parent)
    , m_value(valueFont)
    , m_unit(unitFont)
    , m_height(height)
    , m_baseline(baseline) {
    installAccessibility();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void FigureLine::setFigure(const Figure& figure) {
    const QSize before = sizeHint();
    const bool isOtherValue = m_value.setText(figure.value);
    const bool isOtherUnit = m_unit.setText(figure.unit);
    if (!isOtherValue && !isOtherUnit)
        return;
    tellAccessibleName(*this, figure.text());
    if (sizeHint() != before)
        updateGeometry();
    update();
}

QSize FigureLine::sizeHint() const {
    return {static_cast<int>(std::ceil(m_value.width())) + static_cast<int>(std::ceil(unitWidth())), m_height};
}

QSize FigureLine::minimumSizeHint() const {
    return {0, m_height};
}

double FigureLine::unitWidth() const {
    return m_unit.text().isEmpty() ? 0 : gap + m_unit.width();
}

double FigureLine::valueRoom() const {
    return width() - std::ceil(unitWidth());
}

bool FigureLine::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showHiddenText(*event, m_value.fits(valueRoom()) ? QString() : accessibleName(), *this);
        return true;
    }
    return QWidget::event(event);
}

void FigureLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double valueEnd = valueRoom();
    painter.setPen(Palette::ink);
    m_value.drawRight(painter, QPointF(valueEnd, m_baseline), valueEnd);
    painter.setPen(Palette::ink3);
    m_unit.drawRight(painter, QPointF(width(), m_baseline), m_unit.width());
}

} // namespace torvane

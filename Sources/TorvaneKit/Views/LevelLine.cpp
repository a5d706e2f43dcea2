#include "Views/LevelLine.h"

#include "Design/DesignSystem.h"
#include "Views/StatusDot.h"

#include <cmath>

namespace torvane {

namespace {

constexpr int lineHeight = 14;
constexpr double dotSize = 7;
constexpr double gap = 5;

} // namespace

LevelLine::LevelLine(QWidget* parent)
    : QWidget(parent)
    , m_word(Fonts::label()) {
    installAccessibility();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void LevelLine::setLevel(GasLevel level) {
    if (level == m_level)
        return;
    m_level = level;
    m_word.setText(QString(word(level)));
    tellAccessibleName(*this, m_word.text());
    updateGeometry();
    update();
}

QSize LevelLine::sizeHint() const {
    return {static_cast<int>(std::ceil(dotSize + gap + m_word.width())), lineHeight};
}

void LevelLine::paintEvent(QPaintEvent*) {
    if (!m_level)
        return;
    QPainter painter(this);
    StatusDot::paint(painter, {dotSize / 2, lineHeight / 2.0}, color(*m_level), dotSize);
    painter.setPen(color(*m_level));
    m_word.draw(painter, {dotSize + gap, double(TextRun::baseline(Fonts::label(), lineHeight))}, m_word.width());
}

} // namespace torvane

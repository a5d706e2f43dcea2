#include "Views/TextLine.h"

#include "Views/HiddenText.h"

#include <cmath>

namespace torvane {

namespace {

/// More than any line may insist on.
constexpr int mostWidth = 200;

bool isSame(const DynamicColor& a, const DynamicColor& b) {
    return a.dark == b.dark && a.darkOpacity == b.darkOpacity && a.light == b.light && a.lightOpacity == b.lightOpacity;
}

} // namespace

DynamicColor always(const QColor& color) {
    return {color.rgb(), color.alphaF(), color.rgb(), color.alphaF()};
}

TextLine::TextLine(const TextStyle& style, const QString& text, QWidget* parent)
    : QWidget(parent)
    , m_style(style)
    , m_run(style.font)
    , m_shorter(style.font) {
    installAccessibility();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setText(text);
}

void TextLine::setText(const QString& text, const QString& shorter) {
    const std::pair before(sizeHint(), minimumSizeHint());
    const bool isOtherShorter = m_shorter.setText(shorter);
    const bool isOtherText = m_run.setText(text);
    if (!isOtherText && !isOtherShorter)
        return;
    tellAccessibleName(*this, m_run.text());
    if (before != std::pair(sizeHint(), minimumSizeHint()))
        updateGeometry();
    update();
}

void TextLine::setColor(const DynamicColor& color) {
    if (isSame(color, m_style.color))
        return;
    m_style.color = color;
    update();
}

QSize TextLine::sizeHint() const {
    return {static_cast<int>(std::ceil(m_run.width())), m_style.height};
}

QSize TextLine::minimumSizeHint() const {
    return {std::min(static_cast<int>(std::ceil(m_shorter.width())), mostWidth), m_style.height};
}

bool TextLine::isCut() const {
    return !m_run.fits(width());
}

bool TextLine::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showHiddenText(*event, isCut() ? m_run.text() : QString(), *this);
        return true;
    }
    return QWidget::event(event);
}

void TextLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(m_style.color);
    const int baseline = m_style.baseline.value_or(TextRun::baseline(m_style.font, m_style.height));
    const bool isShortened = isCut() && !m_shorter.text().isEmpty();
    const TextRun& run = isShortened ? m_shorter : m_run;
    if (m_style.alignment & Qt::AlignRight)
        run.drawRight(painter, QPointF(width(), baseline), width());
    else
        run.draw(painter, QPointF(0, baseline), width());
}

} // namespace torvane

#include "Views/TextLabel.h"

#include "Views/Drawing.h"

#include <QPainter>

namespace torvane {

TextLabel::TextLabel(const QString& text, const QFont& font, const DynamicColor& color, QAccessible::Role role)
    : m_color(color)
    , m_role(role) {
    installAccessibility();
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setFont(font);
    setText(text);
    setAccessibleName(text);
}

/// The label's own drawing takes its colour from the widget's palette, which would have to be kept in step.
void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    painter.setPen(m_color);
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | (wordWrap() ? Qt::TextWordWrap : 0), text());
}

} // namespace torvane

#include "Views/TextLabel.h"

#include "Views/Drawing.h"

#include <QPainter>

namespace torvane {

TextLabel::TextLabel(const QString& text, const QFont& font, const DynamicColor& color, QWidget* parent)
    : QLabel(parent)
    , m_color(color) {
    setTextFormat(Qt::PlainText); // Names of networks come from the relay.
    setWordWrap(true);
    setFont(font);
    setText(text);
}

void TextLabel::elide() {
    setWordWrap(false);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void TextLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    const bool isCut = !wordWrap() && fontMetrics().horizontalAdvance(text()) > contentsRect().width();
    setToolTip(isCut ? text() : QString());
}

/// The label's own drawing takes its colour from the widget's palette, which would have to be kept in step.
void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    painter.setPen(m_color);
    if (wordWrap())
        painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextWordWrap, text());
    else
        painter.drawText(contentsRect(), static_cast<int>(alignment()),
                         fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()));
}

} // namespace torvane

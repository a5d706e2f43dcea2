#include "Views/Paragraph.h"

#include <QTextLayout>
#include <QTextOption>

namespace torvane {

namespace {

QStringList wrapped(const QString& text, const QFont& font, int width) {
    QStringList lines;
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // A path or an address may be one long word.
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.append(text.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    return lines;
}

} // namespace

Paragraph::Paragraph(const TextStyle& style, int width, const QString& text, QWidget* parent)
    : QWidget(parent)
    , m_style(style)
    , m_width(width) {
    installAccessibility();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    tellAccessibleName(*this, text);
    for (const QString& line : wrapped(text, style.font, width)) {
        m_lines.append(TextRun(style.font));
        m_lines.last().setText(line);
    }
}

QSize Paragraph::sizeHint() const {
    return {m_width, m_style.height * static_cast<int>(m_lines.size())};
}

void Paragraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(m_style.color);
    double baseline = TextRun::baseline(m_style.font, m_style.height);
    for (const TextRun& line : m_lines) {
        line.draw(painter, {0, baseline}, m_width);
        baseline += m_style.height;
    }
}

} // namespace torvane

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
    , m_text(text)
    , m_width(width) {
    installAccessibility();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    tellAccessibleName(*this, text);
}

const QList<TextRun>& Paragraph::lines() const {
    if (!m_lines.isEmpty())
        return m_lines;
    for (const QString& line : wrapped(m_text, m_style.font, m_width)) {
        m_lines.append(TextRun(m_style.font));
        m_lines.last().setText(line);
    }
    return m_lines;
}

QSize Paragraph::sizeHint() const {
    return {m_width, m_style.height * static_cast<int>(lines().size())};
}

void Paragraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(m_style.color);
    double baseline = TextRun::baseline(m_style.font, m_style.height);
    for (const TextRun& line : lines()) {
        line.draw(painter, {0, baseline}, m_width);
        baseline += m_style.height;
    }
}

} // namespace torvane

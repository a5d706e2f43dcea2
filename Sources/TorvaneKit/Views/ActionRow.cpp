#include "Views/ActionRow.h"

#include "Design/DesignSystem.h"

#include <cmath>

namespace torvane {

namespace {

constexpr int rowHeight = 28;
constexpr int padding = 14;

QFont labelFont() {
    return Fonts::sans(13, QFont::Normal);
}

QFont trailingFont() {
    return Fonts::mono(12, QFont::Normal);
}

} // namespace

ActionRow::ActionRow(const QString& label, const QString& trailing, const QKeySequence& shortcut, QWidget* parent)
    : PlainButton(parent)
    , m_label(labelFont())
    , m_trailing(trailingFont())
    , m_shortcut(shortcut) {
    m_label.setText(label);
    m_trailing.setText(trailing);
    tellAccessibleName(*this, label);
}

QSize ActionRow::sizeHint() const {
    return {static_cast<int>(std::ceil(m_label.width() + m_trailing.width())) + 3 * padding, rowHeight};
}

void ActionRow::paintContent(QPainter& painter) {
    const double right = width() - padding;
    painter.setPen(Palette::ink);
    m_label.draw(painter, QPointF(padding, TextRun::baseline(labelFont(), rowHeight)),
                 right - m_trailing.width() - 2 * padding);
    painter.setPen(Palette::ink3);
    m_trailing.drawRight(painter, QPointF(right, TextRun::baseline(trailingFont(), rowHeight)), m_trailing.width());
}

} // namespace torvane

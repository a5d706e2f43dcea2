#include "Views/TextButton.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"
#include "Views/ReturnKey.h"

#include <QKeyEvent>
#include <QPainter>

namespace torvane {

namespace {

constexpr double unavailableOpacity = 0.5;
constexpr double radius = 7;
constexpr int sidePadding = 11;
constexpr int verticalPadding = 5;

} // namespace

TextButton::TextButton(const QString& text, Look look, QWidget* parent)
    : QAbstractButton(parent)
    , m_look(look) {
    setText(text);
    setFont(Fonts::sans(12, look == Look::filled ? QFont::Medium : QFont::Normal));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TextButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * sidePadding, fontMetrics().height() + 2 * verticalPadding};
}

void TextButton::paintGround(QPainter& painter) const {
    if (m_look == Look::filled) {
        fillRoundedRect(painter, rect(), radius, isDown() || underMouse() ? Palette::ink2 : Palette::accent);
        return;
    }
    const QColor fill = isDown() ? Palette::surface3 : underMouse() ? Palette::surface2 : Palette::surface;
    drawRoundedRect(painter, rect(), radius, fill, Palette::ink4);
}

void TextButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : unavailableOpacity);
    paintGround(painter);
    painter.setPen(m_look == Look::filled ? Palette::accentInk : Palette::ink);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void TextButton::keyPressEvent(QKeyEvent* event) {
    if (!pressByReturn(*this, *event))
        QAbstractButton::keyPressEvent(event);
}

} // namespace torvane

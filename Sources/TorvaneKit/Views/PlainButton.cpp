#include "Views/PlainButton.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"
#include "Views/ReturnKey.h"

#include <QKeyEvent>
#include <QPainter>

namespace torvane {

namespace {

constexpr double sideMargin = 6;
constexpr double radius = 6;
constexpr double focusWidth = 1.5;

} // namespace

PlainButton::PlainButton(QWidget* parent)
    : QAbstractButton(parent) {
    installAccessibility();
    setAttribute(Qt::WA_Hover); // Repaints when the pointer comes and goes.
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PlainButton::focusInEvent(QFocusEvent* event) {
    // A click says where it goes by itself; a window that comes back shows what it showed.
    if (event->reason() == Qt::MouseFocusReason)
        showFocus(false);
    else if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        showFocus(true);
    QAbstractButton::focusInEvent(event);
}

void PlainButton::showFocus(bool isShown) {
    if (isShown == m_isFocusShown)
        return;
    m_isFocusShown = isShown;
    update();
}

void PlainButton::mousePressEvent(QMouseEvent* event) {
    showFocus(false);
    QAbstractButton::mousePressEvent(event);
}

void PlainButton::keyPressEvent(QKeyEvent* event) {
    showFocus(true);
    if (pressByReturn(*this, *event))
        return;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        event->ignore(); // Where they lead is the view's to say.
        return;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void PlainButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool isFocusShown = hasFocus() && m_isFocusShown;
    if (isDown() || underMouse() || isFocusShown) {
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF shape = QRectF(rect()).adjusted(sideMargin, 0, -sideMargin, 0);
        if (isDown() || underMouse())
            fillRoundedRect(painter, shape, radius, isDown() ? Palette::surface3 : Palette::surface2);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(Palette::ink2), focusWidth));
        const double half = focusWidth / 2;
        if (isFocusShown)
            painter.drawRoundedRect(shape.adjusted(half, half, -half, -half), radius - half, radius - half);
    }
    paintContent(painter);
}

} // namespace torvane

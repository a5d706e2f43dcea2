#include "Views/FocusRing.h"

#include "Design/DesignSystem.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

namespace torvane {

namespace {

constexpr int reach = 3; ///< how far the ring reaches beyond the control
constexpr double thickness = 1.5;
constexpr double radius = 9;

/// Whether a control may lie elsewhere after this has happened to what it lies in.
bool movesContent(const QEvent& event) {
    return event.type() == QEvent::Move || event.type() == QEvent::Resize;
}

/// Modifiers belong to shortcuts, of the desktop too: they move no focus.
bool isModifier(const QEvent& event) {
    switch (static_cast<const QKeyEvent&>(event).key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return true;
    default:
        return false;
    }
}

} // namespace

FocusRing::FocusRing(QWidget* window)
    : QWidget(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, QWidget* now) {
        m_focused = now && parentWidget()->isAncestorOf(now) ? now : nullptr;
        follow();
    });
    qApp->installEventFilter(this);
}

void FocusRing::follow() {
    const bool isWanted = m_isByKey && m_focused;
    if (isWanted) {
        const QRect control(m_focused->mapTo(parentWidget(), QPoint()), m_focused->size());
        setGeometry(control.adjusted(-reach, -reach, reach, reach));
        raise();
    }
    setVisible(isWanted);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress && !isModifier(*event);
    if (isKey || event->type() == QEvent::MouseButtonPress) {
        if (isKey != m_isByKey) {
            m_isByKey = isKey;
            follow();
        }
    } else if (m_focused && movesContent(*event) && watched->isWidgetType()) {
        const auto* widget = static_cast<const QWidget*>(watched);
        if (widget == m_focused || (widget != parentWidget() && widget->isAncestorOf(m_focused)))
            follow();
    }
    return false;
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(Palette::ink2), thickness));
    constexpr double inset = thickness / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

} // namespace torvane

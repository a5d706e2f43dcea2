#include "Badge/TrayWindowBadge.h"

#include "Badge/BadgeDrawing.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// How long the pointer rests before a tooltip comes, as elsewhere on the desktop.
constexpr int toolTipDelayMs = 700;

/// Pixels of the screen for a point.
double screenScale() {
    return qGuiApp->primaryScreen()->devicePixelRatio();
}

/// Trays with round icon sizes in mind give this height, in points.
constexpr int trayPoints = 22;

/// How much smaller than it should be a figure beside the mark may get.
constexpr double leastPart = 0.7;

} // namespace

TrayWindowBadge::TrayWindowBadge(const SystemTray& tray)
    : m_tray(tray) {
    m_hover.setSingleShot(true);
    m_hover.setInterval(toolTipDelayMs);
    connect(&m_hover, &QTimer::timeout, this, &TrayWindowBadge::showToolTip);
    connect(&tray, &SystemTray::lookChanged, this, [this] {
        if (m_window)
            m_window->request(wanted()); // Upright panels are narrow.
    });
}

TrayWindowBadge::~TrayWindowBadge() {
    QToolTip::hideText();
}

void TrayWindowBadge::show(const BadgeLook& look, const BadgeInk& ink) {
    const bool isSame = m_window && look.picture == m_look.picture && ink == m_ink;
    m_look = look;
    m_ink = ink;
    if (isSame)
        return;
    const bool isFirst = !m_window;
    if (m_window) {
        m_window->request(wanted());
    } else {
        m_window.emplace(m_tray, wanted());
        connect(&*m_window, &SystemTrayWindow::resized, this, &TrayWindowBadge::draw);
        connect(&*m_window, &SystemTrayWindow::pressed, this, &TrayWindowBadge::pressed);
        connect(&*m_window, &SystemTrayWindow::entered, &m_hover, qOverload<>(&QTimer::start));
        connect(&*m_window, &SystemTrayWindow::left, this, [this] {
            m_hover.stop();
            QToolTip::hideText();
        });
    }
    draw();
    if (isFirst)
        Q_EMIT appeared();
}

/// As large as the screen's scale has it, and no higher than the tray.
double TrayWindowBadge::scale() const {
    return m_window ? std::min(screenScale(), m_window->size().height() / double(badgePoints)) : screenScale();
}

QSize TrayWindowBadge::wanted() const {
    const int height = static_cast<int>(trayPoints * screenScale());
    return {m_tray.isVertical() ? height : wideBadgeSize(m_look.picture, m_ink, scale()).width(), height};
}

/// Some trays shrink a window to their own height, and its width with it; others know nothing but squares.
QImage TrayWindowBadge::badge(QSize size) const {
    const double part = size.width() / double(wideBadgeSize(m_look.picture, m_ink, scale()).width());
    if (part < leastPart)
        return squareBadge(m_look.picture, m_ink, std::min(size.width(), size.height()));
    return wideBadge(m_look.picture, m_ink, scale() * std::min(part, 1.0));
}

void TrayWindowBadge::draw() {
    const QSize size = m_window->size();
    const QImage badge = this->badge(size);
    QImage whole(size, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    QPainter(&whole).drawImage((size.width() - badge.width()) / 2, (size.height() - badge.height()) / 2, badge);
    m_window->show(whole);
    m_window->request(wanted());
}

void TrayWindowBadge::pressed(Qt::MouseButton button, QPoint position) {
    m_hover.stop();
    QToolTip::hideText();
    if (button == Qt::RightButton) {
        openMenu();
    } else if (button == Qt::LeftButton) {
        // From where the pointer is in both kinds of pixels: several screens may each have a scale of their own.
        const QRect window = m_window->geometry();
        const QPointF offset = QPointF(window.topLeft() - position) / screenScale();
        Q_EMIT clickedAt(QRect(QCursor::pos() + offset.toPoint(), window.size() / screenScale()));
    }
}

void TrayWindowBadge::openMenu() {
    m_menu = std::make_unique<QMenu>();
    for (const MenuEntry& entry : badgeMenu()) {
        if (entry.separator) {
            m_menu->addSeparator();
            continue;
        }
        // Queued: what is chosen may take this surface away.
        connect(
            m_menu->addAction(entry.label), &QAction::triggered, this,
            [this, id = entry.id] { Q_EMIT commandChosen(*badgeCommand(id)); }, Qt::QueuedConnection);
    }
    m_menu->popup(QCursor::pos());
}

void TrayWindowBadge::showToolTip() const {
    const QString title = u"<b>"_s + m_look.name().toHtmlEscaped() + u"</b>"_s;
    QToolTip::showText(QCursor::pos(), title + u"<br>"_s + m_look.detail.toHtmlEscaped());
}

} // namespace torvane

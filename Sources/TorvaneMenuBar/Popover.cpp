#include "Popover.h"

#include "PopoverPlacement.h"

#include <QScreen>

#include <utility>

namespace torvane {

namespace {

/// Where the badge lies, as well as it is known.
QRect wholeBadge(const QRect& badge, const QRect& screen, const QRect& area) {
    if (badge.isNull())
        return PopoverPlacement::badgeInCorner(screen, area);
    return badge.size() == QSize(1, 1) ? PopoverPlacement::badgeAround(badge.topLeft()) : badge;
}

} // namespace

Popover::Popover(MakeContent makeContent, std::chrono::milliseconds patience)
    : m_makeContent(std::move(makeContent))
    , m_patience(patience) {}

Popover::~Popover() = default;

void Popover::toggle(const QRect& badge) {
    const bool isAnswered = !std::exchange(m_answeredUntil, QDeadlineTimer()).hasExpired();
    if (isOpen())
        close();
    else if (!isAnswered)
        open(badge);
}

void Popover::open(const QRect& badge) {
    if (isOpen()) {
        m_window->bringToFront();
        return;
    }
    if (!badge.isNull())
        m_lastBadge = badge;
    X11::DesktopQuestion desktop; // Is answered while the content is made.
    std::unique_ptr<QWidget> content = m_makeContent();
    const QScreen& screen = PopoverPlacement::screenOf(m_lastBadge);
    const QRect area = PopoverPlacement::workArea(screen);
    const QRect place = wholeBadge(m_lastBadge, screen.geometry(), area);
    m_window = std::make_unique<PopoverWindow>(std::move(content), place, area, desktop.answer());
    connect(m_window.get(), &PopoverWindow::ended, this, &Popover::ended);
    m_window->open();
}

/// Not deleted at once: what closes it may be one of its own events.
void Popover::close() {
    if (!m_window)
        return;
    PopoverWindow* window = m_window.release();
    window->disconnect(this);
    window->hide();
    window->deleteLater();
}

void Popover::rehearse() const {
    if (isOpen())
        return;
    const std::unique_ptr<QWidget> content = m_makeContent();
    content->adjustSize();
    content->grab();
}

void Popover::ended(PopoverEnd end) {
    if (end == PopoverEnd::foreignWindow)
        m_answeredUntil = QDeadlineTimer(m_patience);
    close();
}

} // namespace torvane

#include "PopoverPlacement.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

/// Most panels' icons are 22 or 24 pixels large.
constexpr int usualIconSize = 24;

int clamped(int wanted, int first, int afterLast, int length) {
    return std::max(first, std::min(wanted, afterLast - length));
}

/// The far side of a rectangle, which QRect's own right() and bottom() are not.
int afterRight(const QRect& rectangle) {
    return rectangle.x() + rectangle.width();
}

int afterBottom(const QRect& rectangle) {
    return rectangle.y() + rectangle.height();
}

QRect without(QRect area, const X11::Dock& dock) {
    switch (dock.edge) {
    case Qt::LeftEdge:
        area.setLeft(std::max(area.left(), afterRight(dock.geometry)));
        return area;
    case Qt::RightEdge:
        area.setRight(std::min(area.right(), dock.geometry.left() - 1));
        return area;
    case Qt::TopEdge:
        area.setTop(std::max(area.top(), afterBottom(dock.geometry)));
        return area;
    case Qt::BottomEdge:
        area.setBottom(std::min(area.bottom(), dock.geometry.top() - 1));
        return area;
    }
    Q_UNREACHABLE();
}

int distance(const QRect& screen, QPoint point) {
    const int x = std::max({screen.left() - point.x(), 0, point.x() - screen.right()});
    const int y = std::max({screen.top() - point.y(), 0, point.y() - screen.bottom()});
    return x + y;
}

} // namespace

QRect PopoverPlacement::fromServer(const QRect& rectangle, QPoint screenOrigin, double scale) {
    const QPointF topLeft = QPointF(rectangle.topLeft() - screenOrigin) / scale;
    const QSizeF size = QSizeF(rectangle.size()) / scale;
    return QRectF(topLeft + screenOrigin, size).toAlignedRect();
}

QRect PopoverPlacement::workArea(const QRect& screen, const QRect& available, const QList<X11::Dock>& docks) {
    QRect area = available;
    for (const X11::Dock& dock : docks) {
        if (dock.geometry.intersects(screen))
            area = without(area, dock);
    }
    // Docks that leave nothing are mistaken about themselves.
    return area.isEmpty() ? available : area;
}

QRect PopoverPlacement::badgeAround(QPoint pointer) {
    return QRect(pointer - QPoint(usualIconSize, usualIconSize) / 2, QSize(usualIconSize, usualIconSize));
}

QRect PopoverPlacement::place(QSize wanted, const QRect& badge, const QRect& area) {
    const QSize size = wanted.boundedTo(area.size());
    const bool isInUpperHalf = 2 * badge.center().y() < 2 * area.y() + area.height();
    const bool isBeside = badge.center().x() < area.left() || badge.center().x() > area.right();
    int x = badge.center().x() - size.width() / 2;
    int y = isInUpperHalf ? afterBottom(badge) : badge.top() - size.height();
    if (isBeside)
        y = isInUpperHalf ? badge.top() : afterBottom(badge) - size.height();
    x = clamped(x, area.left(), afterRight(area), size.width());
    y = clamped(y, area.top(), afterBottom(area), size.height());
    return QRect(QPoint(x, y), size);
}

QRect PopoverPlacement::badgeInCorner(const QRect& screen, const QRect& area) {
    const bool isAtBottom = area.top() == screen.top() && area.bottom() < screen.bottom();
    return QRect(area.right(), isAtBottom ? afterBottom(area) : area.top() - 1, 1, 1);
}

const QScreen& PopoverPlacement::screenOf(const QRect& badge) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    if (badge.isNull())
        return *screens.first();
    const auto isNearer = [&](const QScreen* a, const QScreen* b) {
        return distance(a->geometry(), badge.center()) < distance(b->geometry(), badge.center());
    };
    return **std::min_element(screens.cbegin(), screens.cend(), isNearer);
}

/// The available area of one screen comes from the window manager. Of several, Qt cuts all with a single rectangle,
/// which knows nothing of panels between two of them.
QRect PopoverPlacement::workArea(const QScreen& screen) {
    if (QGuiApplication::screens().size() == 1)
        return screen.availableGeometry();
    QList<X11::Dock> docks;
    for (const X11::Dock& dock : X11::docks())
        docks.append({fromServer(dock.geometry, screen.geometry().topLeft(), screen.devicePixelRatio()), dock.edge});
    return workArea(screen.geometry(), screen.availableGeometry(), docks);
}

} // namespace torvane

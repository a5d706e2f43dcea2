#include "Badge/StatusItemBadge.h"

#include "Badge/BadgeDrawing.h"

#include <QFontDatabase>

#include <array>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// Icon sizes of the panels in use, in pixels. Each is drawn at its own size: a scaled figure is a blurred one.
/// But xfce's panel scales the largest to its usual 22: three times that keeps the edges on pixels.
constexpr std::array iconSizes{16, 22, 24, 32, 48, 64, 66};

enum MenuId { refreshId = 1, separatorId, quitId };

QList<MenuEntry> menu() {
    return {{refreshId, u"Refresh Now"_s}, {separatorId, {}, true, true}, {quitId, u"Quit velisk"_s}};
}

} // namespace

StatusItemBadge::StatusItemBadge(const QDBusConnection& bus, QObject* parent)
    : QObject(parent)
    , m_item(bus, u"org.velisk.Torvane"_s, u"ApplicationStatus"_s) {
    connect(&m_item, &StatusNotifierItem::activated, this, &StatusItemBadge::activated);
    connect(&m_item, &StatusNotifierItem::menuEntryTriggered, this, [this](int id) {
        if (id == refreshId)
            Q_EMIT refreshRequested();
        else if (id == quitId)
            Q_EMIT quitRequested();
    });
    m_item.showMenu(menu());
    draw({});
    m_item.show(m_shown);
}

void StatusItemBadge::show(const BadgeLook& look) {
    if (look == m_look)
        return;
    const BadgeLook before = std::exchange(m_look, look);
    if (look.figure != before.figure)
        draw(look.figure);
    m_shown.title = look.detail.isEmpty() ? look.title : look.title + ": "_L1 + look.detail;
    m_shown.toolTipTitle = look.title;
    m_shown.toolTipText = look.detail;
    m_item.show(m_shown);
}

void StatusItemBadge::draw(const QString& figure) {
    // At the start there is no figure yet, and fonts need not be loaded for none.
    const FigureOutline outline = figure.isEmpty()
                                      ? FigureOutline()
                                      : figureOutline(figure, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    m_shown.icons.clear();
    for (const int size : iconSizes)
        m_shown.icons.append(badgeImage(outline, badgeColors(), size));
}

} // namespace torvane

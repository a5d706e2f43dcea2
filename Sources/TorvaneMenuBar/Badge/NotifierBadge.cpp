#include "Badge/NotifierBadge.h"

using namespace Qt::StringLiterals;

namespace torvane {

NotifierBadge::NotifierBadge(const QDBusConnection& bus)
    : m_item(bus, u"org.velisk.Torvane"_s, u"ApplicationStatus"_s) {
    connect(&m_item, &StatusNotifierItem::activated, this, &BadgeSurface::clicked);
    connect(&m_item, &StatusNotifierItem::menuEntryTriggered, this, [this](int entry) {
        if (const std::optional<BadgeCommand> command = badgeCommand(entry))
            Q_EMIT commandChosen(*command);
    });
    m_item.showMenu(badgeMenu());
}

void NotifierBadge::show(const BadgeLook& look, const BadgeInk& ink) {
    if (look.picture != m_picture || ink != m_ink) {
        m_picture = look.picture;
        m_ink = ink;
        draw(look.picture, ink, m_shown);
    }
    m_shown.title = look.title();
    m_shown.toolTipTitle = look.title(); // LXQt's panel shows nothing else of a tooltip.
    m_item.show(m_shown);
}

} // namespace torvane

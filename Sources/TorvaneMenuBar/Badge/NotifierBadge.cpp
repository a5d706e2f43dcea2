#include "Badge/NotifierBadge.h"

#include "Model/ApplicationId.h"

using namespace Qt::StringLiterals;

namespace torvane {

NotifierBadge::NotifierBadge(const QDBusConnection& bus)
    : m_item(bus, applicationId, u"ApplicationStatus"_s) {
    connect(&m_item, &StatusNotifierItem::activated, this, &BadgeSurface::clicked);
    // Where the panel shows no menu, the popover is the way to all that the menu has.
    connect(&m_item, &StatusNotifierItem::contextMenuRequested, this, &BadgeSurface::clicked);
    connect(&m_item, &StatusNotifierItem::menuEntryTriggered, this, [this](int entry) {
        if (const std::optional<BadgeCommand> command = badgeCommand(entry))
            Q_EMIT commandChosen(*command);
    });
    connect(&m_item, &StatusNotifierItem::announced, this, &NotifierBadge::showWanted);
    connect(&m_item, &StatusNotifierItem::registeredChanged, this, [this](bool registered) {
        if (registered)
            Q_EMIT appeared();
    });
    m_item.showMenu(badgeMenu());
}

/// The first drawing loads the fonts, which takes as long as the panel needs to make room for the item: it is told
/// first, so that both go on at the same time.
void NotifierBadge::show(const BadgeLook& look, const BadgeInk& ink) {
    m_wanted = look;
    m_wantedInk = ink;
    if (m_item.isAnnounced())
        showWanted();
}

void NotifierBadge::showWanted() {
    if (m_wanted.picture != m_picture || m_wantedInk != m_ink) {
        m_picture = m_wanted.picture;
        m_ink = m_wantedInk;
        draw(m_wanted.picture, m_wantedInk, m_shown);
    }
    m_shown.title = m_wanted.title();
    m_shown.toolTipTitle = m_wanted.title(); // LXQt's panel shows nothing else of a tooltip.
    m_item.show(m_shown);
}

} // namespace torvane

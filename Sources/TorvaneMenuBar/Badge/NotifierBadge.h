#pragma once

#include "Badge/BadgeSurface.h"
#include "Platform/StatusNotifierItem.h"

namespace torvane {

/// The badge as a status notifier item: its texts and its menu, which are the same in every panel. How it looks is up
/// to the kinds of it.
class NotifierBadge : public BadgeSurface {
    Q_OBJECT

public:
    /// Needs a QGuiApplication, for the fonts. Without a bus the badge is not seen.
    explicit NotifierBadge(const QDBusConnection& bus);

    void show(const BadgeLook& look, const BadgeInk& ink) final;

    bool isRegistered() const { return m_item.isRegistered(); }

private:
    void showWanted();

    /// Fills in what the panel draws.
    virtual void draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) = 0;

    BadgeLook m_wanted;
    BadgeInk m_wantedInk;
    std::optional<BadgePicture> m_picture; // As drawn.
    BadgeInk m_ink;
    NotifierLook m_shown;
    StatusNotifierItem m_item;
};

} // namespace torvane

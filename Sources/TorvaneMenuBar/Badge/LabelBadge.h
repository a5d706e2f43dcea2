#pragma once

#include "Badge/NotifierBadge.h"
#include "Badge/PanelIcons.h"

namespace torvane {

/// The badge in panels that write a text beside the icon: the mark as an icon of a name, the figure as the label.
/// Ayatana's service reads no pixmaps at all; they are for the others, should no file be written.
class LabelBadge final : public NotifierBadge {
public:
    using NotifierBadge::NotifierBadge;

private:
    void draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) override;
    std::optional<QString> iconName(const BadgePicture& mark, const BadgeInk& ink);

    PanelIcons m_icons;
};

} // namespace torvane

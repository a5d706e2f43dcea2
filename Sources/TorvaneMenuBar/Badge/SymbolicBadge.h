#pragma once

#include "Badge/NotifierBadge.h"
#include "Badge/PanelIcons.h"

namespace torvane {

/// The badge in panels that show square icons, and give one-coloured ones that have a name their own foreground. In
/// colour, or where no file can be written, it is as in any panel for squares.
class SymbolicBadge final : public NotifierBadge {
public:
    using NotifierBadge::NotifierBadge;

private:
    void draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) override;

    PanelIcons m_icons;
};

} // namespace torvane

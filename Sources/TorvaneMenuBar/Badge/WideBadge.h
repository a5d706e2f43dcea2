#pragma once

#include "Badge/NotifierBadge.h"

namespace torvane {

/// The badge in panels whose icons may be wider than high: the figure beside the mark, in one picture. There is no
/// square one beside it, since some take the one that fits a square.
class WideBadge final : public NotifierBadge {
public:
    using NotifierBadge::NotifierBadge;

private:
    void draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) override;
};

} // namespace torvane

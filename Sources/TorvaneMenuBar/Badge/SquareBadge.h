#pragma once

#include "Badge/NotifierBadge.h"

namespace torvane {

/// The badge in panels that show square icons: the mark, and a short figure below it.
class SquareBadge final : public NotifierBadge {
public:
    using NotifierBadge::NotifierBadge;

private:
    void draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) override;
};

} // namespace torvane

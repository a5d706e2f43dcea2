#include "Badge/SquareBadge.h"

#include "Badge/BadgeDrawing.h"

namespace torvane {

void SquareBadge::draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) {
    look.icons = squareBadges(picture, ink);
}

} // namespace torvane

#include "Badge/WideBadge.h"

#include "Badge/BadgeDrawing.h"

namespace torvane {

void WideBadge::draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) {
    look.icons = {wideBadge(picture, ink, 3)}; // Sharp up to a scale of three.
}

} // namespace torvane

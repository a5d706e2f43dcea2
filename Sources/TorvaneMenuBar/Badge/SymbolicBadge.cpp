#include "Badge/SymbolicBadge.h"

#include "Badge/BadgeDrawing.h"

using namespace Qt::StringLiterals;

namespace torvane {

void SymbolicBadge::draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) {
    const std::optional<QString> name =
        picture.icon.colorIcon ? std::nullopt : m_icons.put(symbolicBadge(picture, ink.color), "-symbolic.svg"_L1);
    look.iconName = name.value_or(QString());
    look.iconThemePath = name ? m_icons.folder() : QString();
    // Plasma 5 prefers pixmaps, which it does not tint, to names.
    look.icons = name ? QList<QImage>() : squareBadges(picture, ink);
}

} // namespace torvane

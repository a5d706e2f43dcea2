#include "Design/ChainGlyph.h"

#include "Design/Artwork.h"
#include "Design/ChainMarksMono.h"
#include "Design/InitialLetter.h"

namespace torvane {

void ChainGlyph::paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& foreground) {
    Artwork::inBox(painter, rectangle, [&painter, &name, &foreground] {
        const QStringList emblem = ChainMarksMono::byName().value(name);
        for (const QString& path : emblem)
            painter.fillPath(Artwork::path(path), foreground);
        if (emblem.isEmpty())
            painter.fillPath(Artwork::tile().subtracted(InitialLetter::outline(InitialLetter::of(name))), foreground);
    });
}

} // namespace torvane

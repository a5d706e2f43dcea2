#include "Design/ChainGlyph.h"

#include "Design/Artwork.h"
#include "Design/ChainMarksMono.h"
#include "Design/InitialLetter.h"

namespace torvane {

QPainterPath ChainGlyph::path(const QString& name) {
    const QStringList emblem = ChainMarksMono::byName().value(name);
    if (emblem.isEmpty())
        return Artwork::tile().subtracted(InitialLetter::outline(InitialLetter::of(name)));
    QPainterPath whole;
    whole.setFillRule(Qt::WindingFill);
    for (const QString& part : emblem) // They do not overlap.
        whole.addPath(Artwork::path(part));
    return whole;
}

void ChainGlyph::paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& foreground) {
    Artwork::inBox(painter, rectangle, [&] { painter.fillPath(path(name), foreground); });
}

} // namespace torvane

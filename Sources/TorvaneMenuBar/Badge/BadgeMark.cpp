#include "Badge/BadgeMark.h"

#include "Design/ChainGlyph.h"
#include "Design/ChainIcon.h"

#include <QPainter>

namespace torvane {

namespace {
QPainterPath disc(double diameter) {
    QPainterPath path;
    path.addEllipse(QPointF(16.5 - 2.25, 16.5 - 2.25), diameter / 2, diameter / 2);
    return path;
}
} // namespace

QPainterPath markPath(const BadgePicture& picture) {
    QTransform place;
    place.translate(1.5, 1.5);
    place.scale(15 / 24.0, 15 / 24.0);
    QPainterPath path = place.map(ChainGlyph::path(picture.network));
    return picture.dot ? path.subtracted(disc(7.1)) | disc(4.5) : path;
}

QImage markImage(const BadgePicture& picture, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 18.0, pixels / 18.0);
    const QRectF mark(1.5, 1.5, 15, 15);
    if (picture.isColored)
        ChainIcon::paint(painter, mark, picture.network);
    else
        ChainGlyph::paint(painter, mark, picture.network, Qt::black);
    if (!picture.dot)
        return image;
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(disc(7.1), Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillPath(disc(4.5), picture.isColored ? *picture.dot : Qt::black);
    return image;
}

} // namespace torvane

#include "Badge/BadgeMark.h"

#include <QPainter>

namespace torvane {

QPainterPath markPath(const BadgePicture& picture) {
    QPainterPath path;
    path.addPolygon(QPolygonF({{9, 1.5}, {13.8, 9}, {9, 12}, {4.2, 9}, {9, 1.5}}));
    path.addPolygon(QPolygonF({{9, 13.2}, {13.8, 10.5}, {9, 16.5}, {4.2, 10.5}, {9, 13.2}}));
    if (!picture.dot)
        return path;
    QPainterPath ring;
    ring.addEllipse(QPointF(16.5 - 3.55, 16.5 - 3.55), 3.55, 3.55);
    QPainterPath dot;
    dot.addEllipse(QPointF(16.5 - 2.25, 16.5 - 2.25), 2.25, 2.25);
    return path.subtracted(ring) | dot;
}

QImage markImage(const BadgePicture& picture, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 18.0, pixels / 18.0);
    painter.fillPath(markPath(picture), picture.isColored ? QColor(0x62, 0x7e, 0xea) : QColor(Qt::black));
    return image;
}

} // namespace torvane

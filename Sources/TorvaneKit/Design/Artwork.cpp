#include "Design/Artwork.h"

#include "Design/SVGPath.h"

#include <QHash>

namespace torvane {

const QPainterPath& Artwork::path(const QString& data) {
    static QHash<QString, QPainterPath> parsed;
    const auto known = parsed.constFind(data);
    return known != parsed.cend() ? *known : *parsed.insert(data, SVGPath::path(data));
}

QPainterPath Artwork::path(const QString& data, Qt::FillRule rule) {
    QPainterPath shared = path(data);
    shared.setFillRule(rule);
    return shared;
}

QPainterPath Artwork::tile() {
    QPainterPath tile;
    tile.addRoundedRect(QRectF(0, 0, boxSide, boxSide), tileRadius, tileRadius);
    return tile;
}

} // namespace torvane

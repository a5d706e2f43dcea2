#include "Design/Artwork.h"

#include "Design/SVGPath.h"

#include <QHash>

#include <utility>

namespace torvane {

QPainterPath Artwork::path(const QString& data, Qt::FillRule rule) {
    static QHash<std::pair<QString, Qt::FillRule>, QPainterPath> parsed;
    QPainterPath& path = parsed[{data, rule}];
    if (path.isEmpty()) {
        path = SVGPath::path(data);
        path.setFillRule(rule);
    }
    return path;
}

QPainterPath Artwork::tile() {
    QPainterPath tile;
    tile.addRoundedRect(QRectF(0, 0, boxSide, boxSide), tileRadius, tileRadius);
    return tile;
}

} // namespace torvane

#include "Views/MenuBarRasterCache.h"

#include "Support/FixedPoint.h"

namespace torvane {

QHash<QString, BadgeRaster>& MenuBarRasterCache::badgeIcons() {
    static QHash<QString, BadgeRaster> icons;
    return icons;
}

QString MenuBarRasterCache::pixelKey(const QString& key, int pixels) {
    return key + QStringLiteral("_%1px").arg(pixels); // No other key ends so.
}

QString MenuBarRasterCache::colorKey(const QColor& color, double size) {
    const QColor known = color.isValid() ? color.toRgb() : QColor(Qt::gray);
    QString key;
    for (const float component : {known.redF(), known.greenF(), known.blueF(), known.alphaF()})
        key += fixedPoint(static_cast<double>(component), 3) + QLatin1Char('_');
    return key + fixedPoint(size * 1000, 0);
}

} // namespace torvane

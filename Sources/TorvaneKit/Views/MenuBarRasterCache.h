#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QString>

#include <concepts>

namespace torvane {

/// A badge's picture. What shows a template gives it a colour of its own: its alpha alone counts.
struct BadgeRaster {
    QImage image;
    bool isTemplate = false;
};

/// The pictures of badges, so that each look is drawn once. Looks are few: nothing is ever dropped. Main thread only.
class MenuBarRasterCache final {
public:
    /// By key, for the life of the process.
    static QHash<QString, BadgeRaster>& badgeIcons();

    /// The key's picture, drawn if there is none yet. One that could not be drawn is null, and is tried again.
    template <std::invocable Draw>
    static BadgeRaster badgeIcon(const QString& key, Draw draw) {
        const auto known = std::as_const(badgeIcons()).constFind(key);
        if (known != badgeIcons().cend())
            return *known;
        const BadgeRaster drawn = draw();
        if (!drawn.image.isNull())
            badgeIcons().insert(key, drawn);
        return drawn;
    }

    /// The key of the same look in a picture of so many pixels, for what does not take the usual one.
    static QString pixelKey(const QString& key, int pixels);

    /// An sRGB colour's components, 0 to 1, with three decimals, and a size in thousandths of a point:
    /// "0.369_0.447_0.341_1.000_4500". What is no colour counts as grey.
    static QString colorKey(const QColor& color, double size);
};

} // namespace torvane

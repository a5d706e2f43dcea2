#pragma once

#include "Design/DesignSystem.h"

#include <QCache>
#include <QCoreApplication>
#include <QHash>
#include <QPainter>
#include <QPixmap>

namespace torvane {

/// A drawing that costs more than copying its pixels, such as a mark or a chart: it is drawn anew when it was
/// invalidated, or when its size, the screen's scale or the appearance has changed. Drawings of one subject share
/// their pixels, also with those that come after them: each opening of the popover shows mostly what the one before
/// has shown. `Subject` says all that is drawn; it is hashed and compared only when the pixels are not at hand.
template <class Subject>
class CachedDrawing final {
public:
    void invalidate() { m_pixels = QPixmap(); }

    /// Paints `draw(QPainter&, QRectF)` at the target, whose corner must lie on a whole device-independent pixel.
    template <class Draw>
    void paint(QPainter& painter, const QRectF& target, const Subject& subject, const Draw& draw) {
        const double scale = painter.deviceTransform().m11(); // A device that is redirected says its own ratio.
        const Look look{target.width(), target.height(), scale, currentAppearance()};
        if (m_pixels.isNull() || look != m_look) {
            m_look = look;
            m_pixels = pixels(look, subject, draw);
        }
        painter.drawPixmap(target.topLeft(), m_pixels);
    }

private:
    struct Look {
        double width;
        double height;
        double scale;
        Appearance appearance;

        bool operator==(const Look&) const = default;
    };

    struct Key {
        Look look;
        Subject subject;

        bool operator==(const Key&) const = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.look.width, key.look.height, key.look.scale, key.subject);
        }
    };

    /// In square device-independent pixels: about twice of what the popover shows, whatever the screen's scale.
    static constexpr int mostKept = 120'000;

    static QCache<Key, QPixmap>& kept() {
        static QCache<Key, QPixmap> cache(mostKept);
        // Pixels do not outlive the application object.
        [[maybe_unused]] static const bool isClearedInTime = [] {
            qAddPostRoutine([] { cache.clear(); });
            return true;
        }();
        return cache;
    }

    template <class Draw>
    static QPixmap pixels(const Look& look, const Subject& subject, const Draw& draw) {
        const Key key{look, subject};
        if (const QPixmap* known = kept().object(key))
            return *known;
        const QSizeF size(look.width, look.height);
        QPixmap drawn((size * look.scale).toSize());
        drawn.setDevicePixelRatio(look.scale);
        drawn.fill(Qt::transparent);
        QPainter drawing(&drawn);
        drawing.setRenderHint(QPainter::Antialiasing);
        draw(drawing, QRectF({}, size));
        drawing.end();
        const QPixmap pixels = drawn.copy(); // What was drawn on keeps Qt's engine, which is larger than a mark.
        kept().insert(key, new QPixmap(pixels), static_cast<int>(look.width * look.height));
        return pixels;
    }

    QPixmap m_pixels;
    Look m_look{};
};

} // namespace torvane

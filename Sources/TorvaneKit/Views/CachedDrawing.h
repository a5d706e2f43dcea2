#pragma once

#include "Design/DesignSystem.h"

#include <QPainter>
#include <QPixmap>

namespace torvane {

/// A drawing that costs more than copying its pixels, such as a mark or a chart: it is drawn anew when it was
/// invalidated, or when its size, the screen's scale or the appearance has changed.
class CachedDrawing final {
public:
    void invalidate() { m_pixels = QPixmap(); }

    /// Paints `draw(QPainter&, QRectF)` at the target, whose corner must lie on a whole device-independent pixel.
    template <class Draw>
    void paint(QPainter& painter, const QRectF& target, const Draw& draw) {
        const double scale = painter.deviceTransform().m11(); // A device that is redirected says its own ratio.
        if (m_pixels.isNull() || m_size != target.size() || m_scale != scale || m_appearance != currentAppearance()) {
            m_size = target.size();
            m_scale = scale;
            m_appearance = currentAppearance();
            m_pixels = QPixmap((target.size() * scale).toSize());
            m_pixels.setDevicePixelRatio(scale);
            m_pixels.fill(Qt::transparent);
            QPainter drawing(&m_pixels);
            drawing.setRenderHint(QPainter::Antialiasing);
            draw(drawing, QRectF({}, target.size()));
        }
        painter.drawPixmap(target.topLeft(), m_pixels);
    }

private:
    QPixmap m_pixels;
    QSizeF m_size;
    double m_scale = 0;
    Appearance m_appearance = Appearance::light;
};

} // namespace torvane

#include "Views/MenuBarBadgeIcon.h"

#include "Design/ChainGlyph.h"
#include "Design/ChainIcon.h"

#include <QPainter>

#include <cmath>

namespace torvane {

namespace {

constexpr double padding = 1.5;
constexpr double ring = 1.3; // of nothing, around the dot

/// Panels are not that high: whoever asks for more has a size that is none.
constexpr int largestSide = 4096;

QRectF grown(const QRectF& circle, double by) {
    return circle.adjusted(-by, -by, by, by);
}

} // namespace

double MenuBarBadgeIcon::side() const {
    return size + 2 * padding;
}

QRectF MenuBarBadgeIcon::mark() const {
    return {padding, padding, size, size};
}

QRectF MenuBarBadgeIcon::dot() const {
    const double corner = padding + size - dotSize;
    return {corner, corner, dotSize, dotSize};
}

QRectF MenuBarBadgeIcon::cutOut() const {
    return grown(dot(), ring);
}

void MenuBarBadgeIcon::paint(QPainter& painter) const {
    if (colorIcon)
        ChainIcon::paint(painter, mark(), chain);
    else
        ChainGlyph::paint(painter, mark(), chain, Qt::black);
    // Not a number is no size either.
    if (!dotColor || !(dotSize > 0))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setBrush(Qt::black);
    painter.drawEllipse(cutOut());
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // A template has the panel's colour: the dot's is given up.
    painter.setBrush(colorIcon ? *dotColor : QColor(Qt::black));
    painter.drawEllipse(dot());
    painter.restore();
}

QImage MenuBarBadgeIcon::rasterized(int pixels) const {
    if (pixels < 1 || pixels > largestSide || !std::isfinite(size) || size <= 0)
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(pixels / side(), pixels / side());
    paint(painter);
    return image;
}

} // namespace torvane

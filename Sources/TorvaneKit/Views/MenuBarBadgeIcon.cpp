#include "Views/MenuBarBadgeIcon.h"

#include "Design/Artwork.h"
#include "Design/ChainGlyph.h"
#include "Design/ChainIcon.h"

#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <numbers>

namespace torvane {

namespace {

constexpr double padding = 1.5;
constexpr double ring = 1.3; // of nothing, around the dot

/// Panels are not that high: whoever asks for more has a size that is none.
constexpr int largestSide = 4096;

QRectF grown(const QRectF& circle, double by) {
    return circle.adjusted(-by, -by, by, by);
}

/// The unit circle, with so many corners that none is seen. Qt takes four times as long to flatten the curves of an
/// ellipse, which was most of what a badge cost.
const QPolygonF& unitCircle() {
    static const QPolygonF corners = [] {
        constexpr int count = 64;
        QPolygonF result;
        for (int i = 0; i < count; ++i) {
            const double angle = 2 * std::numbers::pi * i / count;
            result.append({std::cos(angle), std::sin(angle)});
        }
        return result;
    }();
    return corners;
}

QPainterPath disc(const QRectF& circle) {
    QPainterPath path;
    path.addEllipse(circle);
    return path;
}

void fillCircle(QPainter& painter, const QRectF& circle, const QColor& color) {
    const double radius = circle.width() / 2;
    painter.setBrush(color);
    painter.drawPolygon(
        QTransform::fromTranslate(circle.center().x(), circle.center().y()).scale(radius, radius).map(unitCircle()));
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

bool MenuBarBadgeIcon::hasSize() const {
    return std::isfinite(size) && size > 0;
}

bool MenuBarBadgeIcon::hasDot() const {
    return dotColor && std::isfinite(dotSize) && dotSize > 0;
}

QPainterPath MenuBarBadgeIcon::shape() const {
    if (!hasSize())
        return {};
    QTransform place = QTransform::fromTranslate(padding, padding);
    const QPainterPath glyph =
        place.scale(size / Artwork::boxSide, size / Artwork::boxSide).map(ChainGlyph::path(chain));
    if (!hasDot())
        return glyph;
    // Qt makes polygons of curves whose sides are a part of a unit: in points, a circle would have eight.
    constexpr double fine = 64;
    const QTransform enlarged = QTransform::fromScale(fine, fine);
    QPainterPath cut = enlarged.inverted().map(enlarged.map(glyph).subtracted(enlarged.map(disc(cutOut()))));
    cut.addPath(disc(dot()));
    return cut;
}

void MenuBarBadgeIcon::paint(QPainter& painter) const {
    if (colorIcon)
        ChainIcon::paint(painter, mark(), chain);
    else
        ChainGlyph::paint(painter, mark(), chain, Qt::black);
    if (!hasDot())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // What is transparent replaces what is there, as if that were erased by black: Qt does this at once, but hands the
    // erasing to other threads and waits for them.
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    fillCircle(painter, cutOut(), Qt::transparent);
    // A template has the panel's colour: the dot's is given up.
    fillCircle(painter, dot(), colorIcon ? *dotColor : QColor(Qt::black));
    painter.restore();
}

QImage MenuBarBadgeIcon::rasterized(int pixels) const {
    if (pixels < 1 || pixels > largestSide || !hasSize())
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(pixels / side(), pixels / side());
    paint(painter);
    return image;
}

} // namespace torvane

#include "Design/RoundedRectangle.h"

#include <QCache>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <optional>

namespace torvane {

namespace {

/// All that decides what corners and edges look like.
struct Look {
    double radius;
    double scale; // Pixels of the screen to a device-independent one.
    QList<Coat> coats;

    bool operator==(const Look&) const = default;
};

size_t qHash(const Look& look, size_t seed = 0) {
    size_t hash = qHashMulti(seed, look.radius, look.scale);
    for (const Coat& coat : look.coats)
        hash = qHashMulti(hash, coat.inset, coat.width, coat.color);
    return hash;
}

/// The smallest rectangle of a look: its middle row and column stand for all that are straight.
struct Tile {
    QImage pixels;
    int corner;
};

/// The windows have about twenty looks, each of some kilobytes.
constexpr qsizetype mostKept = 48;

/// Of the whole pixels of a line across a tile, the ones that follow each other and are of one colour.
struct Run {
    int start;
    int length;
    QColor color;
};

QPainterPath rounded(const QRectF& rectangle, double radius) {
    QPainterPath path;
    path.addRoundedRect(rectangle, radius, radius);
    return path;
}

void paintByPaths(QPainter& painter, const QRectF& rectangle, double radius, const QList<Coat>& coats) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const auto& [inset, width, color] : coats) {
        const QRectF outer = rectangle.adjusted(inset, inset, -inset, -inset);
        QPainterPath path = rounded(outer, radius - inset);
        if (width > 0) // What lies within both is left out: paths are filled by the odd-even rule.
            path.addPath(rounded(outer.adjusted(width, width, -width, -width), radius - inset - width));
        painter.fillPath(path, QColor::fromRgba(color));
    }
}

Tile drawn(const Look& look) {
    const int corner = static_cast<int>(std::ceil(look.radius * look.scale)) + 1;
    QImage pixels(2 * corner + 1, 2 * corner + 1, QImage::Format_ARGB32_Premultiplied);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    painter.scale(look.scale, look.scale);
    paintByPaths(painter, QRectF(QPointF(), QSizeF(pixels.size()) / look.scale), look.radius, look.coats);
    painter.end();
    return {pixels.copy(), corner}; // What was painted on keeps Qt's engine, which is larger than the pixels.
}

const Tile& tile(const Look& look) {
    static QCache<Look, Tile> kept(mostKept);
    if (const Tile* known = kept.object(look))
        return *known;
    auto* fresh = new Tile(drawn(look));
    kept.insert(look, fresh);
    return *fresh;
}

/// The runs down a tile's middle column, which is what its middle row is too, for a rectangle that is `length` long.
QList<Run> profile(const Tile& tile, int length) {
    const int stretch = length - tile.pixels.height();
    QList<Run> runs;
    for (int i = 0; i < tile.pixels.height(); ++i) {
        const QColor color = tile.pixels.pixelColor(tile.corner, i);
        const bool isMiddle = i == tile.corner;
        if (runs.isEmpty() || runs.last().color != color)
            runs.append({i > tile.corner ? i + stretch : i, 0, color});
        runs.last().length += isMiddle ? 1 + stretch : 1;
    }
    return runs;
}

/// What lets through is filled piece by piece, each too short for Qt to hand it to other threads.
void fill(QPainter& painter, const QRect& part, const QColor& color) {
    constexpr int pieceHeight = 64;
    const int height = color.alpha() == 255 ? part.height() : pieceHeight;
    if (color.alpha() == 0 || height == 0)
        return;
    for (int top = part.top(); top <= part.bottom(); top += height)
        painter.fillRect(QRect(part.left(), top, part.width(), height) & part, color);
}

void paintSides(QPainter& painter, const Tile& tile, QSize size) {
    const int corner = tile.corner;
    for (const Run& rows : profile(tile, size.height()))
        fill(painter, {corner, rows.start, size.width() - 2 * corner, rows.length}, rows.color);
    const QRect left(0, corner, corner, size.height() - 2 * corner);
    const QRect right = left.translated(size.width() - corner, 0);
    for (const Run& columns : profile(tile, size.width())) {
        const QRect all(columns.start, corner, columns.length, left.height());
        for (const QRect& side : {left, right}) {
            if (all.intersects(side))
                fill(painter, all & side, columns.color);
        }
    }
}

void paintCorners(QPainter& painter, const Tile& tile, QSize size) {
    const int corner = tile.corner;
    const int far = tile.pixels.width() - corner;
    const QSize part(corner, corner);
    painter.drawImage(QPoint(0, 0), tile.pixels, QRect({0, 0}, part));
    painter.drawImage(QPoint(size.width() - corner, 0), tile.pixels, QRect({far, 0}, part));
    painter.drawImage(QPoint(0, size.height() - corner), tile.pixels, QRect({0, far}, part));
    painter.drawImage(QPoint(size.width() - corner, size.height() - corner), tile.pixels, QRect({far, far}, part));
}

bool isWhole(double value) {
    return std::abs(value - std::round(value)) < 1e-6;
}

/// The rectangle's size in pixels of the device, if it covers whole ones and nothing turns or blends it otherwise.
std::optional<QSize> wholeSize(const QPainter& painter, const QRectF& rectangle) {
    const QTransform& transform = painter.deviceTransform();
    const bool isPlain = transform.type() <= QTransform::TxScale && transform.m11() > 0 &&
                         transform.m11() == transform.m22() && painter.opacity() == 1 &&
                         painter.compositionMode() == QPainter::CompositionMode_SourceOver;
    const QRectF pixels = transform.mapRect(rectangle);
    if (!isPlain || !isWhole(pixels.left()) || !isWhole(pixels.top()) || !isWhole(pixels.width()) ||
        !isWhole(pixels.height()))
        return std::nullopt;
    return pixels.size().toSize();
}

} // namespace

void paintRoundedRectangle(QPainter& painter, const QRectF& rectangle, double radius, const QList<Coat>& coats) {
    const double scale = painter.deviceTransform().m11();
    const std::optional<QSize> size = wholeSize(painter, rectangle);
    const double least = 2 * (std::ceil(radius * scale) + 1) + 1;
    painter.save();
    if (!size || size->width() < least || size->height() < least) {
        paintByPaths(painter, rectangle, radius, coats);
    } else {
        painter.setRenderHint(QPainter::Antialiasing, false); // Qt takes rectangles for paths otherwise.
        painter.translate(rectangle.topLeft());
        painter.scale(1 / scale, 1 / scale);
        const Tile& pixels = tile({radius, scale, coats});
        paintSides(painter, pixels, *size);
        paintCorners(painter, pixels, *size);
    }
    painter.restore();
}

} // namespace torvane

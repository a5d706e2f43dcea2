#include "Badge/BadgeDrawing.h"

#include "Design/DesignSystem.h"
#include "Support/FixedPoint.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// Icon sizes of the panels in use, in pixels. Each is drawn at its own size: a scaled figure is a blurred one.
/// But xfce's panel scales the largest to its usual 22: three times that keeps the edges on pixels.
constexpr std::array iconSizes{16, 22, 24, 32, 48, 64, 66};

/// Of the wide badge, in points.
constexpr double gap = 2.5; // The mark has padding of its own.
constexpr double rightMargin = 2;
constexpr double plateMargin = 3;

/// The mark's own padding, as a part of its picture's side.
constexpr double markPadding = 1.5 / badgePoints;

QImage canvas(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// A mark in the network's colours is a tile, and readable by itself.
bool hasPlate(const BadgePicture& picture, const BadgeInk& ink, bool showsFigure) {
    return ink.plate && (showsFigure || !picture.icon.colorIcon);
}

void drawPlate(QPainter& painter, const BadgeInk& ink, const QSize& size) {
    const double radius = size.height() * 0.2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(*ink.plate);
    painter.drawRoundedRect(QRectF(QPointF(), size), radius, radius);
}

QImage inked(QImage mark, const QColor& ink) {
    QPainter painter(&mark);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(mark.rect(), ink);
    return mark;
}

void drawMark(QPainter& painter, const BadgePicture& picture, const BadgeInk& ink, const QRect& place) {
    const BadgeRaster raster = MenuBarLabel::badgeRaster(picture.icon, place.width());
    if (!raster.image.isNull()) {
        painter.drawImage(place.topLeft(), raster.isTemplate ? inked(raster.image, ink.color) : raster.image);
        return;
    }
    painter.setFont(Fonts::mono(MenuBarLabel::fontSize * place.width() / badgePoints, QFont::Medium));
    painter.setPen(ink.color);
    painter.drawText(place, Qt::AlignCenter, picture.tag);
}

FigureOutline outlineOf(const BadgePicture& picture) {
    if (picture.figure.isEmpty())
        return {}; // Fonts need not be loaded for none.
    return figureOutline(picture.figure, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
}

QImage square(const BadgePicture& picture, const BadgeInk& ink, int size, const FigureOutline& outline) {
    QImage image = canvas({size, size});
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    SquareLayout layout = squareLayout(outline, size, ink.plate.has_value());
    if (hasPlate(picture, ink, !layout.figure.isEmpty()))
        drawPlate(painter, ink, image.size());
    else if (ink.plate)
        layout = squareLayout(outline, size, false);
    drawMark(painter, picture, ink, layout.mark);
    painter.fillPath(layout.figure, ink.color);
    return image;
}

QFont wideFont(double scale) {
    QFont font = Fonts::mono(MenuBarLabel::fontSize * scale, QFont::Medium);
    // What lies behind is not known, so that subpixels cannot be blended with it.
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

int pixels(double points, double scale) {
    return static_cast<int>(std::ceil(points * scale));
}

/// What is free at each end of a wide badge for the plate's round corners.
int endMargin(const BadgePicture& picture, const BadgeInk& ink, double scale) {
    return hasPlate(picture, ink, !picture.figure.isEmpty()) ? pixels(plateMargin, scale) : 0;
}

QString number(double value) {
    return fixedPoint(value, 3);
}

QString pathData(const QPainterPath& path) {
    QString data;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isMoveTo())
            data += u'M';
        else if (element.isLineTo())
            data += u'L';
        else if (element.isCurveTo())
            data += u'C';
        else
            data += u' ';
        data += number(element.x) + u' ' + number(element.y);
    }
    return data;
}

QString shape(const QPainterPath& path) {
    if (path.isEmpty())
        return {};
    const QLatin1StringView rule = path.fillRule() == Qt::OddEvenFill ? "evenodd"_L1 : "nonzero"_L1;
    return u"<path class=\"ColorScheme-Text\" fill=\"currentColor\" fill-rule=\"%1\" d=\"%2\"/>"_s.arg(rule,
                                                                                                       pathData(path));
}

} // namespace

SquareLayout squareLayout(const FigureOutline& outline, int size, bool hasPlate) {
    // Without a plate, round digits still reach a little below the line that they stand on.
    const int margin = hasPlate ? std::max(1, static_cast<int>(std::lround(size / 22.0))) : size / 44;
    const QPainterPath figure = placed(outline, size, margin);
    if (figure.isEmpty()) {
        const int inset = hasPlate ? margin : 0; // It has padding of its own.
        return {QRect(inset, inset, size - 2 * inset, size - 2 * inset), {}};
    }
    const int above = size - margin - figureHeight(size) - std::max(1, static_cast<int>(std::lround(size / 22.0)));
    // The mark's padding reaches out of the room that is left for the mark itself.
    const int side = static_cast<int>(std::floor((above - margin) / (1 - 2 * markPadding)));
    const int top = margin - static_cast<int>(std::lround(side * markPadding));
    return {QRect((size - side) / 2, top, side, side), figure};
}

QImage squareBadge(const BadgePicture& picture, const BadgeInk& ink, int size) {
    return square(picture, ink, size, outlineOf(picture));
}

QList<QImage> squareBadges(const BadgePicture& picture, const BadgeInk& ink) {
    const FigureOutline outline = outlineOf(picture);
    QList<QImage> images;
    for (const int size : iconSizes)
        images.append(square(picture, ink, size, outline));
    return images;
}

QSize wideBadgeSize(const BadgePicture& whole, const BadgeInk& ink, double scale) {
    const BadgePicture picture = whole.besideMark();
    const int height = pixels(badgePoints, scale);
    const int ends = 2 * endMargin(picture, ink, scale);
    if (picture.figure.isEmpty())
        return {height + ends, height};
    const double figure = QFontMetricsF(wideFont(scale)).horizontalAdvance(picture.figure);
    return {height + pixels(gap + rightMargin, scale) + static_cast<int>(std::ceil(figure)) + ends, height};
}

QImage wideBadge(const BadgePicture& whole, const BadgeInk& ink, double scale) {
    const BadgePicture picture = whole.besideMark();
    QImage image = canvas(wideBadgeSize(picture, ink, scale));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const int height = image.height();
    const int left = endMargin(picture, ink, scale);
    if (hasPlate(picture, ink, !picture.figure.isEmpty()))
        drawPlate(painter, ink, image.size());
    drawMark(painter, picture, ink, QRect(left, 0, height, height));
    const QFont font = wideFont(scale);
    painter.setFont(font);
    painter.setPen(ink.color);
    const double baseline = std::round((height + QFontMetricsF(font).capHeight()) / 2);
    painter.drawText(QPointF(left + height + pixels(gap, scale), baseline), picture.figure);
    return image;
}

QByteArray symbolicBadge(const BadgePicture& picture, const QColor& color) {
    constexpr int side = 2 * badgePoints; // Of whole numbers, upon which the figure stands.
    const SquareLayout layout = squareLayout(outlineOf(picture), side, false);
    QTransform place;
    place.translate(layout.mark.x(), layout.mark.y());
    place.scale(layout.mark.width() / double(badgePoints), layout.mark.height() / double(badgePoints));
    const QString svg = u"<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\" viewBox=\"0 0 36 36\">"
                        "<style id=\"current-color-scheme\" type=\"text/css\">.ColorScheme-Text{color:%1}</style>"
                        "%2%3</svg>"_s;
    return svg.arg(color.name(), shape(place.map(picture.icon.shape())), shape(layout.figure)).toUtf8();
}

} // namespace torvane

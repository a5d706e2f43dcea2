#include "Badge/BadgeDrawing.h"

#include "Badge/BadgeMark.h"
#include "Badge/FigureOutline.h"
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
constexpr double figureSize = 13;
constexpr double plateMargin = 3;

/// The mark's own padding, as a part of its picture's side.
constexpr double markPadding = 1.5 / badgePoints;

QImage canvas(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void drawPlate(QPainter& painter, const BadgeInk& ink, const QSize& size) {
    if (!ink.plate)
        return;
    const double radius = size.height() * 0.2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(*ink.plate);
    painter.drawRoundedRect(QRectF(QPointF(), size), radius, radius);
}

/// A template has alpha alone: its colour is the ink.
QImage inked(QImage mark, const BadgePicture& picture, const BadgeInk& ink) {
    if (picture.isColored)
        return mark;
    QPainter painter(&mark);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(mark.rect(), ink.color);
    return mark;
}

void drawMark(QPainter& painter, const BadgePicture& picture, const BadgeInk& ink, const QRect& place) {
    painter.drawImage(place.topLeft(), inked(markImage(picture, place.width()), picture, ink));
}

QFont wideFont(double scale) {
    QFont font = Fonts::mono(figureSize * scale, QFont::Medium);
    // What lies behind is not known, so that subpixels cannot be blended with it.
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

int pixels(double points, double scale) {
    return static_cast<int>(std::ceil(points * scale));
}

/// What is free at each end for the plate's round corners.
int endMargin(const BadgeInk& ink, double scale) {
    return ink.plate ? pixels(plateMargin, scale) : 0;
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

SquareLayout squareLayout(const BadgePicture& picture, int size, bool hasPlate) {
    const int margin = hasPlate ? std::max(1, static_cast<int>(std::lround(size / 22.0))) : 0;
    const FigureOutline outline =
        picture.figure.isEmpty() ? FigureOutline() // Fonts need not be loaded for none.
                                 : figureOutline(picture.figure, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    const QPainterPath figure = placed(outline, size, margin);
    if (figure.isEmpty())
        return {QRect(margin, margin, size - 2 * margin, size - 2 * margin), {}};
    const int above = size - margin - figureHeight(size) - std::max(1, static_cast<int>(std::lround(size / 22.0)));
    // The mark's padding reaches out of the room that is left for the mark itself.
    const int side = static_cast<int>(std::floor((above - margin) / (1 - 2 * markPadding)));
    const int top = margin - static_cast<int>(std::lround(side * markPadding));
    return {QRect((size - side) / 2, top, side, side), figure};
}

QImage squareBadge(const BadgePicture& picture, const BadgeInk& ink, int size) {
    QImage image = canvas({size, size});
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPlate(painter, ink, image.size());
    const SquareLayout layout = squareLayout(picture, size, ink.plate.has_value());
    drawMark(painter, picture, ink, layout.mark);
    painter.fillPath(layout.figure, ink.color);
    return image;
}

QList<QImage> squareBadges(const BadgePicture& picture, const BadgeInk& ink) {
    QList<QImage> images;
    for (const int size : iconSizes)
        images.append(squareBadge(picture, ink, size));
    return images;
}

int wideBadgeWidth(const BadgePicture& picture, double scale) {
    const int mark = pixels(badgePoints, scale);
    if (picture.figure.isEmpty())
        return mark;
    return mark + pixels(gap + rightMargin, scale) +
           static_cast<int>(std::ceil(QFontMetricsF(wideFont(scale)).horizontalAdvance(picture.figure)));
}

QImage wideBadge(const BadgePicture& picture, const BadgeInk& ink, double scale) {
    const int height = pixels(badgePoints, scale);
    const int margin = endMargin(ink, scale);
    QImage image = canvas({wideBadgeWidth(picture, scale) + 2 * margin, height});
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPlate(painter, ink, image.size());
    drawMark(painter, picture, ink, QRect(margin, 0, height, height));
    const QFont font = wideFont(scale);
    painter.setFont(font);
    painter.setPen(ink.color);
    const double baseline = std::round((height + QFontMetricsF(font).capHeight()) / 2);
    painter.drawText(QPointF(margin + height + pixels(gap, scale), baseline), picture.figure);
    return image;
}

QByteArray symbolicBadge(const BadgePicture& picture, const QColor& color) {
    constexpr int side = 2 * badgePoints; // Of whole numbers, upon which the figure stands.
    const SquareLayout layout = squareLayout(picture, side, false);
    QTransform place;
    place.translate(layout.mark.x(), layout.mark.y());
    place.scale(layout.mark.width() / double(badgePoints), layout.mark.height() / double(badgePoints));
    const QString svg = u"<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\" viewBox=\"0 0 36 36\">"
                        "<style id=\"current-color-scheme\" type=\"text/css\">.ColorScheme-Text{color:%1}</style>"
                        "%2%3</svg>"_s;
    return svg.arg(color.name(), shape(place.map(markPath(picture))), shape(layout.figure)).toUtf8();
}

} // namespace torvane

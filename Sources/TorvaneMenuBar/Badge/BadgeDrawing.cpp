#include "Badge/BadgeDrawing.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// Outlines are taken at this size, where hinting moves nothing, and scaled.
constexpr int outlinePixels = 256;

/// Parts of the square's side.
constexpr double figureHeight = 0.405;
constexpr double narrowestDigit = 0.17;
/// No square holds more characters, and outlines of many take long.
constexpr qsizetype mostCharacters = 8;

/// In pixels.
constexpr double leastDigitWidth = 4;
constexpr double leastFigureHeight = 6;

/// Digits that are as high as they are wide look stretched: a short figure keeps a margin instead.
constexpr double widestDigit = 0.80;

bool isDrawable(const QString& figure) {
    return !figure.isEmpty() && figure.size() <= mostCharacters &&
           std::all_of(figure.cbegin(), figure.cend(), [](QChar each) { return each.isPrint(); });
}

/// What is kept free on each side and between mark and figure: whole pixels, and those of 22 at its multiples.
int margin(int size) {
    return std::max(1, static_cast<int>(std::round(size / 22.0)));
}

double heightOfFigure(int size) {
    return std::max(std::round(size * figureHeight), leastFigureHeight);
}

/// The outline moved to its place and squeezed to the width, standing on whole pixels; empty when it cannot be read.
QPainterPath placed(const FigureOutline& figure, int size) {
    const QRectF bounds = figure.path.boundingRect();
    if (bounds.width() <= 0 || figure.digitHeight <= 0)
        return {};
    const double height = heightOfFigure(size);
    const double vertical = height / figure.digitHeight;
    const double room = size - 2 * margin(size);
    const double roomiest = height * widestDigit / figure.digitWidth;
    const double horizontal = std::min({vertical, room / bounds.width(), roomiest});
    if (horizontal * figure.digitWidth < std::max(leastDigitWidth, narrowestDigit * size))
        return {};
    QTransform place;
    place.translate((size - bounds.width() * horizontal) / 2, size - margin(size));
    place.scale(horizontal, vertical);
    place.translate(-bounds.left(), 0);
    return place.map(figure.path);
}

/// An eight-sided stone seen from the side, each facet a tone: `part` is the facet's corners in parts of the rectangle.
QPolygonF facet(const QRectF& rectangle, std::initializer_list<QPointF> corners) {
    QPolygonF polygon;
    for (const QPointF corner : corners)
        polygon.append(rectangle.topLeft() + QPointF(corner.x() * rectangle.width(), corner.y() * rectangle.height()));
    return polygon;
}

void drawMark(QPainter& painter, const QRectF& rectangle, const BadgeColors& colors) {
    painter.setBrush(colors.markLight);
    painter.drawPolygon(facet(rectangle, {{0.5, 0}, {0.5, 0.72}, {0, 0.5}}));
    painter.drawPolygon(facet(rectangle, {{0.5, 0.82}, {0.5, 1}, {0, 0.60}}));
    painter.setBrush(colors.markDark);
    painter.drawPolygon(facet(rectangle, {{0.5, 0}, {1, 0.5}, {0.5, 0.72}}));
    painter.drawPolygon(facet(rectangle, {{0.5, 0.82}, {1, 0.60}, {0.5, 1}}));
}

} // namespace

BadgeColors badgeColors() {
    return {QColor(0x1f, 0x23, 0x2b), QColor(0xff, 0xff, 0xff), QColor(0xc9, 0xd0, 0xff), QColor(0x8c, 0x97, 0xf5)};
}

FigureOutline figureOutline(const QString& figure, const QFont& font) {
    if (!isDrawable(figure))
        return {};
    QFont large = font;
    large.setPixelSize(outlinePixels);
    large.setWeight(QFont::Bold);
    large.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(large);
    FigureOutline outline;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        outline.digitWidth = std::max(outline.digitWidth, metrics.horizontalAdvance(QChar(digit)));
    QPainterPath seven; // Flat above and below, unlike the round digits.
    seven.addText(0, 0, large, u"7"_s);
    outline.digitHeight = seven.boundingRect().height();
    double x = 0;
    for (const QChar character : figure) {
        // Digits stand in cells of one width, so that a figure does not jump about as it changes.
        const double advance = metrics.horizontalAdvance(character);
        const double cell = character.isDigit() ? outline.digitWidth : advance;
        outline.path.addText(x + (cell - advance) / 2, 0, large, character);
        x += cell;
    }
    return outline;
}

BadgeLayout badgeLayout(const FigureOutline& figure, int size) {
    BadgeLayout layout{{}, placed(figure, size)};
    const int free = margin(size);
    const bool alone = layout.figure.isEmpty();
    const double top = alone ? 2 * free : free;
    const double bottom = size - 2 * free - (alone ? 0 : heightOfFigure(size));
    const double height = bottom - top;
    const double width = height * 0.64;
    layout.mark = QRectF((size - width) / 2, top, width, height);
    return layout;
}

QImage badgeImage(const FigureOutline& figure, const BadgeColors& colors, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.plate);
    painter.drawRoundedRect(QRectF(0, 0, size, size), size * 0.14, size * 0.14);
    const BadgeLayout layout = badgeLayout(figure, size);
    drawMark(painter, layout.mark, colors);
    painter.fillPath(layout.figure, colors.ink);
    return image;
}

} // namespace torvane

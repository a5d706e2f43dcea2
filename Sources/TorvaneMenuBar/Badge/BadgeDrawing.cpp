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

struct Outline {
    QPainterPath path;
    double digitWidth = 0;
    double digitHeight = 0;
};

/// Digits stand in cells of one width, so that a figure does not jump about as it changes.
Outline outline(const QString& figure, QFont font) {
    font.setPixelSize(outlinePixels);
    font.setWeight(QFont::Bold);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    Outline result;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        result.digitWidth = std::max(result.digitWidth, metrics.horizontalAdvance(QChar(digit)));
    QPainterPath seven; // Flat above and below, unlike the round digits.
    seven.addText(0, 0, font, u"7"_s);
    result.digitHeight = seven.boundingRect().height();
    double x = 0;
    for (const QChar character : figure) {
        const double advance = metrics.horizontalAdvance(character);
        const double cell = character.isDigit() ? result.digitWidth : advance;
        result.path.addText(x + (cell - advance) / 2, 0, font, character);
        x += cell;
    }
    return result;
}

/// What is kept free on each side and between mark and figure: whole pixels, and those of 22 at its multiples.
int margin(int size) {
    return std::max(1, static_cast<int>(std::round(size / 22.0)));
}

double heightOfFigure(int size) {
    return std::max(std::round(size * figureHeight), leastFigureHeight);
}

/// The outline moved to its place and squeezed to the width, standing on whole pixels; empty when it cannot be read.
QPainterPath placedFigure(const QString& figure, const QFont& font, int size) {
    const bool drawable = std::all_of(figure.cbegin(), figure.cend(), [](QChar each) { return each.isPrint(); });
    if (!drawable || figure.size() > mostCharacters)
        return {};
    const Outline drawn = outline(figure, font);
    const QRectF bounds = drawn.path.boundingRect();
    if (bounds.width() <= 0 || drawn.digitHeight <= 0)
        return {};
    const double height = heightOfFigure(size);
    const double vertical = height / drawn.digitHeight;
    const double room = size - 2 * margin(size);
    const double roomiest = height * widestDigit / drawn.digitWidth;
    const double horizontal = std::min({vertical, room / bounds.width(), roomiest});
    if (horizontal * drawn.digitWidth < std::max(leastDigitWidth, narrowestDigit * size))
        return {};
    QTransform place;
    place.translate((size - bounds.width() * horizontal) / 2, size - margin(size));
    place.scale(horizontal, vertical);
    place.translate(-bounds.left(), 0);
    return place.map(drawn.path);
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

BadgeLayout badgeLayout(const QString& figure, const QFont& font, int size) {
    BadgeLayout layout{{}, placedFigure(figure, font, size)};
    const int free = margin(size);
    const bool alone = layout.figure.isEmpty();
    const double top = alone ? 2 * free : free;
    const double bottom = size - 2 * free - (alone ? 0 : heightOfFigure(size));
    const double height = bottom - top;
    const double width = height * 0.64;
    layout.mark = QRectF((size - width) / 2, top, width, height);
    return layout;
}

QImage badgeImage(const QString& figure, const QFont& font, const BadgeColors& colors, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.plate);
    painter.drawRoundedRect(QRectF(0, 0, size, size), size * 0.14, size * 0.14);
    const BadgeLayout layout = badgeLayout(figure, font, size);
    drawMark(painter, layout.mark, colors);
    painter.fillPath(layout.figure, colors.ink);
    return image;
}

} // namespace torvane

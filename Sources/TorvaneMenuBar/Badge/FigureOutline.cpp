#include "Badge/FigureOutline.h"

#include <QFontMetricsF>
#include <QTransform>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// Outlines are taken at this size, where hinting moves nothing, and scaled.
constexpr int outlinePixels = 256;

/// What a square can hold and still be read.
constexpr qsizetype mostCharacters = 4;

/// Parts of the square's side.
constexpr double heightPart = 0.42;
constexpr double narrowestDigit = 0.17;

/// In pixels.
constexpr double leastDigitWidth = 4;
constexpr int leastHeight = 6;

/// Digits that are as high as they are wide look stretched: a short figure keeps a margin instead.
constexpr double widestDigit = 0.80;

bool isDrawable(const QString& figure) {
    return !figure.isEmpty() && figure.size() <= mostCharacters &&
           std::all_of(figure.cbegin(), figure.cend(), [](QChar each) { return each.isPrint(); });
}

} // namespace

int figureHeight(int size) {
    return std::max(static_cast<int>(std::lround(size * heightPart)), leastHeight);
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

QPainterPath placed(const FigureOutline& figure, int size, int margin) {
    const QRectF bounds = figure.path.boundingRect();
    if (bounds.width() <= 0 || figure.digitHeight <= 0)
        return {};
    const double height = figureHeight(size);
    const double vertical = height / figure.digitHeight;
    const double room = size - 2 * margin;
    const double roomiest = height * widestDigit / figure.digitWidth;
    const double horizontal = std::min({vertical, room / bounds.width(), roomiest});
    if (horizontal * figure.digitWidth < std::max(leastDigitWidth, narrowestDigit * size))
        return {};
    QTransform place;
    place.translate((size - bounds.width() * horizontal) / 2, size - margin);
    place.scale(horizontal, vertical);
    place.translate(-bounds.left(), 0);
    return place.map(figure.path);
}

} // namespace torvane

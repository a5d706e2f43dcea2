#include "Design/InitialLetter.h"

#include "Design/Artwork.h"
#include "Design/DesignSystem.h"

#include <QCache>
#include <QFont>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace torvane {

namespace {

/// Outlines are taken at this size, where hinting moves nothing, and scaled.
constexpr double outlineEm = 208;
constexpr double em = 13;

/// The most that a letter covers, in units of the box.
constexpr double room = 17;

/// Names come from outside, and there are many letters.
constexpr int mostOutlines = 128;

/// More than any letter has code units, with thirty marks at the most (stream-safe text in Unicode's annex 15).
constexpr qsizetype longestLetter = 64;

/// Not so blanks, and what says how the text after it is to be laid out, such as its direction.
bool isSeen(QChar character) {
    const QChar::Category category = character.category();
    return !character.isSpace() && category != QChar::Other_Control && category != QChar::Other_Format;
}

QStringView fromFirstSeen(QStringView text) {
    return {std::find_if(text.begin(), text.end(), isSeen), text.end()};
}

QString firstGrapheme(QStringView text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    return text.first(std::max<qsizetype>(finder.toNextBoundary(), 0)).toString();
}

QPainterPath drawnOutline(const QString& letter, const QFont& font) {
    QPainterPath large;
    large.addText(0, 0, font, letter);
    large.setFillRule(Qt::WindingFill);
    const QRectF bounds = large.boundingRect();
    const double extent = std::max(bounds.width(), bounds.height());
    if (extent <= 0)
        return {};
    const double scale = std::min(em / outlineEm, room / extent);
    QTransform place;
    place.translate(Artwork::boxSide / 2, Artwork::boxSide / 2);
    place.scale(scale, scale);
    place.translate(-bounds.center().x(), -bounds.center().y());
    return place.map(large);
}

} // namespace

QString InitialLetter::of(const QString& name) {
    const QStringView seen = fromFirstSeen(name);
    const QString letter = firstGrapheme(seen.first(std::min(seen.size(), longestLetter)));
    return firstGrapheme(letter.toUpper()); // One letter may have two in upper case.
}

QPainterPath InitialLetter::outline(const QString& letter) {
    static QCache<QString, QPainterPath> outlines(mostOutlines);
    QFont font = Fonts::sans(outlineEm, QFont::DemiBold);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QString key = font.key() + u' ' + letter;
    if (const QPainterPath* known = outlines.object(key))
        return *known;
    QPainterPath path = drawnOutline(letter, font);
    outlines.insert(key, new QPainterPath(path));
    return path;
}

} // namespace torvane

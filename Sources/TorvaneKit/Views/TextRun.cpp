#include "Views/TextRun.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QTextLayout>

#include <cmath>

namespace torvane {

namespace {

/// The popover and the preferences have about half as many texts.
constexpr qsizetype mostKnownShapes = 256;

} // namespace

QString TextRun::cut(const QString& text) {
    if (text.size() <= mostDrawn)
        return text;
    const bool endsWithinCharacter = text[mostDrawn - 1].isHighSurrogate();
    return text.first(endsWithinCharacter ? mostDrawn - 1 : mostDrawn) + QStringLiteral("…");
}

bool TextRun::setText(const QString& text) {
    const QString line = text.simplified();
    if (line == m_text)
        return false;
    m_text = line;
    m_whole.reset();
    m_elided.reset();
    return true;
}

double TextRun::width() const {
    if (!m_whole)
        m_whole = shaped(m_text.left(mostDrawn));
    return m_whole->width;
}

bool TextRun::fits(double room) const {
    // A layout's whole pixels may fall short of a width by less than one, which no eye sees.
    return width() < room + 1;
}

void TextRun::draw(QPainter& painter, QPointF baseline, double room) const {
    const Shape& shape = this->shape(room);
    for (const QGlyphRun& run : shape.glyphs)
        painter.drawGlyphRun(baseline - QPointF(0, shape.ascent), run);
}

void TextRun::drawRight(QPainter& painter, QPointF baseline, double room) const {
    // Whole pixels of the screen: between them, letters blur.
    const double scale = painter.deviceTransform().m11();
    const double left = std::round((baseline.x() - shape(room).width) * scale) / scale;
    draw(painter, {left, baseline.y()}, room);
}

int TextRun::baseline(const QFont& font, double height) {
    const QFontMetricsF metrics(font);
    return static_cast<int>(std::lround((height - metrics.ascent() - metrics.descent()) / 2 + metrics.ascent()));
}

TextRun::KnownShapes& TextRun::knownShapes() {
    static KnownShapes known(mostKnownShapes);
    // Glyphs hold on to their fonts, which go with the application object.
    [[maybe_unused]] static const bool isClearedInTime = [] {
        qAddPostRoutine([] { known.clear(); });
        return true;
    }();
    return known;
}

TextRun::Shape TextRun::shaped(const QString& text) const {
    const std::pair key(text, m_font);
    if (const Shape* known = knownShapes().object(key))
        return *known;
    const Shape shape = laidOut(text);
    knownShapes().insert(key, new Shape(shape));
    return shape;
}

TextRun::Shape TextRun::laidOut(const QString& text) const {
    QTextLayout layout(text, m_font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return {};
    return {layout.glyphRuns(), line.naturalTextWidth(), line.ascent()};
}

const TextRun::Shape& TextRun::shape(double room) const {
    if (fits(room))
        return *m_whole;
    if (!m_elided || m_elidedRoom != room) {
        m_elided = shaped(QFontMetricsF(m_font).elidedText(m_text.left(mostDrawn), Qt::ElideRight, room));
        m_elidedRoom = room;
    }
    return *m_elided;
}

} // namespace torvane

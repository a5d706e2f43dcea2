#pragma once

#include <QCache>
#include <QFont>
#include <QGlyphRun>
#include <QList>
#include <QPainter>
#include <QString>

#include <optional>
#include <utility>

namespace torvane {

/// One line of text, shaped once and drawn often, in the painter's pen colour. Texts that were shaped before, by
/// another line too, are not shaped again: each opening of the popover shows mostly those of the one before. What does
/// not fit ends in "…".
class TextRun final {
public:
    /// More characters than fit on any line: what comes after them is not even measured, which would take long.
    static constexpr qsizetype mostDrawn = 500;

    /// The text as far as it can be drawn, with a "…" in place of the rest.
    static QString cut(const QString& text);

    explicit TextRun(const QFont& font)
        : m_font(font) {}

    /// Takes another text; true when it differs. Line breaks and other white space become single blanks.
    bool setText(const QString& text);

    const QString& text() const { return m_text; }

    /// Of the whole text, as far as it counts, in device-independent pixels.
    double width() const;

    /// Whether the whole text fits.
    bool fits(double room) const;

    /// Draws within `room`, from the baseline's left end.
    void draw(QPainter& painter, QPointF baseline, double room) const;

    /// The same from the baseline's right end.
    void drawRight(QPainter& painter, QPointF baseline, double room) const;

    /// The baseline that centres the font in a line of this height, in whole pixels from the line's top.
    static int baseline(const QFont& font, double height);

private:
    struct Shape {
        QList<QGlyphRun> glyphs;
        double width = 0;
        double ascent = 0;
    };

    using KnownShapes = QCache<std::pair<QString, QFont>, Shape>;

    static KnownShapes& knownShapes();
    Shape shaped(const QString& text) const;
    Shape laidOut(const QString& text) const;
    const Shape& shape(double room) const;

    QFont m_font;
    QString m_text;
    mutable std::optional<Shape> m_whole;
    mutable std::optional<Shape> m_elided;
    mutable double m_elidedRoom = 0;
};

} // namespace torvane

#include "Design/Symbols.h"

#include "Design/Artwork.h"

#include <QPen>

#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr double line = 1.8;
constexpr double signLine = 2;
constexpr double slantedLine = 2.4; // It would look thinner than a level one.

/// How far the middle of the box lies from where a line of this width has sharp edges, in units of the box.
QPointF toSharpMiddle(const QPainter& painter, double width) {
    const QTransform& toDevice = painter.deviceTransform();
    const bool onPixelCentre = std::lround(width * toDevice.m11()) % 2 != 0;
    const double offset = onPixelCentre ? 0.5 : 0;
    const QPointF middle = toDevice.map(QPointF(Artwork::boxSide, Artwork::boxSide) / 2);
    const QPointF sharp(std::floor(middle.x() + 0.5 - offset) + offset, std::floor(middle.y() + 0.5 - offset) + offset);
    return (sharp - middle) / toDevice.m11();
}

void draw(QPainter& painter, const Symbol& symbol, const QColor& color) {
    if (symbol.alignsMiddle)
        painter.translate(toSharpMiddle(painter, symbol.strokeWidth));
    if (!symbol.filled.isEmpty())
        painter.fillPath(Artwork::path(symbol.filled), color);
    if (!symbol.stroked.isEmpty())
        painter.strokePath(Artwork::path(symbol.stroked),
                           QPen(color, symbol.strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace

const QHash<QString, Symbol>& Symbols::byName() {
    static const QHash<QString, Symbol> symbols{
        {u"fuelpump.fill"_s,
         {u"M4 5.4A2.4 2.4 0 0 1 6.4 3H11.8A2.4 2.4 0 0 1 14.2 5.4V19.2H14.7A1 1 0 0 1 14.7 21.2H3.5A1 1 0 0 1 3.5 "
          u"19.2H4Z"
          "M6.5 9.1A.6 .6 0 0 0 7.1 9.7H11.1A.6 .6 0 0 0 11.7 9.1V6.1A.6 .6 0 0 0 11.1 5.5H7.1A.6 .6 0 0 0 6.5 6.1Z"
          "M13.8 11.5H15A2.9 2.9 0 0 1 17.9 14.4V17.1A.9 .9 0 0 0 19.7 17.1V9.67L16.65 6.53A.9 .9 0 0 1 17.95 5.27"
          "L21.5 8.93V17.1A2.7 2.7 0 0 1 16.1 17.1V14.4A1.1 1.1 0 0 0 15 13.3H13.8Z"_s,
          QString(), 0}},
        {u"slider.horizontal.3"_s,
         {u"M5.6 6A2.4 2.4 0 1 1 10.4 6A2.4 2.4 0 1 1 5.6 6ZM13.6 12A2.4 2.4 0 1 1 18.4 12A2.4 2.4 0 1 1 13.6 12Z"
          "M5.6 18A2.4 2.4 0 1 1 10.4 18A2.4 2.4 0 1 1 5.6 18Z"_s,
          u"M3 6H21M3 12H21M3 18H21"_s, line, true}},
        {u"square.stack.3d.up"_s,
         {QString(), u"M12 3.2L21 7.9L12 12.6L3 7.9ZM3 12.2L12 16.9L21 12.2M3 16.4L12 21.1L21 16.4"_s, line}},
        {u"menubar.rectangle"_s,
         {u"M3 5.6A1.6 1.6 0 0 1 4.6 4H19.4A1.6 1.6 0 0 1 21 5.6V9.2H3Z"_s,
          u"M3 6.8A1.8 1.8 0 0 1 4.8 5L19.2 5A1.8 1.8 0 0 1 21 6.8L21 17.2A1.8 1.8 0 0 1 19.2 19L4.8 19"
          "A1.8 1.8 0 0 1 3 17.2Z"_s,
          line}},
        {u"bell"_s,
         {QString(),
          u"M12 3C8.6 3 6.4 5.5 6.4 8.8C6.4 12.9 5.4 14.6 4 16.6H20C18.6 14.6 17.6 12.9 17.6 8.8"
          "C17.6 5.5 15.4 3 12 3ZM9.4 19.6A2.7 2.7 0 0 0 14.6 19.6"_s,
          line}},
        {u"paintpalette"_s,
         {u"M6.2 12.4A1.4 1.4 0 1 1 9 12.4A1.4 1.4 0 1 1 6.2 12.4ZM8.4 8A1.4 1.4 0 1 1 11.2 8"
          "A1.4 1.4 0 1 1 8.4 8ZM13.1 7.8A1.4 1.4 0 1 1 15.9 7.8A1.4 1.4 0 1 1 13.1 7.8ZM15.8 11.6"
          "A1.4 1.4 0 1 1 18.6 11.6A1.4 1.4 0 1 1 15.8 11.6Z"_s,
          u"M12 3A9 9 0 1 0 12 21C13.5 21 14.2 20 14 18.8C13.8 17.2 14.6 16 16.2 16H18C20 16 21 14.4 21 12.2"
          "C21 7.1 17 3 12 3Z"_s,
          line}},
        {u"info.circle"_s,
         {u"M10.65 7.9A1.35 1.35 0 1 1 13.35 7.9A1.35 1.35 0 1 1 10.65 7.9Z"_s,
          u"M12 11.4V16.6M3 12A9 9 0 1 1 21 12A9 9 0 1 1 3 12Z"_s, line, true}},
        {u"minus"_s, {QString(), u"M4 12H20"_s, signLine, true}},
        {u"plus"_s, {QString(), u"M4 12H20M12 4V20"_s, signLine, true}},
        {u"chevron.down"_s, {QString(), u"M5 9L12 16L19 9"_s, slantedLine}},
    };
    return symbols;
}

void Symbols::paint(QPainter& painter, const QRectF& rectangle, const QString& name, const QColor& color) {
    const auto symbol = byName().constFind(name);
    if (symbol == byName().cend())
        return;
    Artwork::inBox(painter, rectangle, [&painter, &color, symbol] { draw(painter, *symbol, color); });
}

} // namespace torvane

#pragma once

#include <QByteArray>
#include <QPainterPath>
#include <QString>

namespace torvane {

/// A document of 24 x 24 units with one element whose attribute of that name holds the text.
QByteArray svgDocument(const QString& text, const char* attribute);

/// The path that Qt's SVG module makes of path data; none if it makes none.
QPainterPath qtSVGPath(const QString& text);

} // namespace torvane

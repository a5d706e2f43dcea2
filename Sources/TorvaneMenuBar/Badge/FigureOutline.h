#pragma once

#include <QFont>
#include <QPainterPath>
#include <QString>

namespace torvane {

/// A figure's outline in one line, at no particular size, with the measures of the font's digits.
struct FigureOutline {
    QPainterPath path;
    double digitWidth = 0;
    double digitHeight = 0;
};

/// Empty when there is no figure, or none that a square could hold. Drawn at all sizes from one outline, since fonts
/// are slow to give it.
FigureOutline figureOutline(const QString& figure, const QFont& font);

/// The outline moved into the lower part of a square of `size` pixels, `margin` from its edges, and squeezed to its
/// width; empty when it could not be read there.
QPainterPath placed(const FigureOutline& figure, int size, int margin);

/// How high the figure of a square badge is, in whole pixels.
int figureHeight(int size);

} // namespace torvane

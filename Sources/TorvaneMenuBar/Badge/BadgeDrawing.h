#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QString>

namespace torvane {

/// What the badge is drawn with: the figure and the mark in ink upon a plate. A panel's colour is not known to its
/// items, and a panel may be dark in a light desktop: upon its own plate the ink is readable on each.
struct BadgeColors {
    QColor plate;
    QColor ink;
    QColor markLight;
    QColor markDark;

    bool operator==(const BadgeColors&) const = default;
};

BadgeColors badgeColors();

/// A figure's outline in one line, at no particular size, with the measures of the font's digits.
struct FigureOutline {
    QPainterPath path;
    double digitWidth = 0;
    double digitHeight = 0;
};

/// Empty when there is no figure, or none that a square could hold. Drawn at all sizes from one outline, since fonts
/// are slow to give it.
FigureOutline figureOutline(const QString& figure, const QFont& font);

/// Where the parts of a badge lie, in pixels of a square. The figure is empty when there is none, or when it could not
/// be read at this size; the mark then has the square to itself.
struct BadgeLayout {
    QRectF mark;
    QPainterPath figure;
};

BadgeLayout badgeLayout(const FigureOutline& figure, int size);

/// A square badge of `size` pixels: the mark above, the figure below it.
QImage badgeImage(const FigureOutline& figure, const BadgeColors& colors, int size);

} // namespace torvane

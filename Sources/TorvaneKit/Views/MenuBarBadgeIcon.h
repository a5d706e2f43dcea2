#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QString>

#include <optional>

class QPainter;

namespace torvane {

/// The badge's picture: a network's mark, and a status dot that stands free in its lower right corner. Sizes are in
/// points, which are device-independent pixels.
struct MenuBarBadgeIcon {
    QString chain;                  ///< the network's display name
    double size;                    ///< the side of the mark
    std::optional<QColor> dotColor; ///< none: no dot
    double dotSize;                 ///< its diameter
    bool colorIcon;                 ///< in the network's colours; else black, as a template

    bool operator==(const MenuBarBadgeIcon&) const = default;

    bool hasSize() const; ///< a size that can be drawn
    bool hasDot() const;  ///< a dot that can be drawn

    /// The side of the whole, with the padding around the mark.
    double side() const;

    QRectF mark() const;
    QRectF dot() const;
    QRectF cutOut() const; ///< what is cut out of the mark around the dot, transparent

    /// What is filled of a template, in points; empty if there is no such size.
    QPainterPath shape() const;

    /// Upon nothing: the dot's surroundings are erased. From the painter's origin, in points.
    void paint(QPainter& painter) const;

    /// Drawn anew, in a picture of so many pixels each way; null if there is no such size.
    QImage rasterized(int pixels) const;
};

} // namespace torvane

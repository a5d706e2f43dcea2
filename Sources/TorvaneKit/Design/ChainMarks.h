#pragma once

#include <QHash>
#include <QList>
#include <QString>

namespace torvane {

/// A network's mark in its own colours, drawn upon a tile. Colours are 0xRRGGBB.
struct ChainMark {
    /// SVG path data in a box of 24 by 24 units.
    struct Shape {
        QString path;
        quint32 fill;
        bool evenOdd; ///< what lies inside: by the even-odd rule, or by the winding number
    };

    quint32 background;
    QList<Shape> shapes; ///< drawn in order
};

namespace ChainMarks {

/// By display name, matched exactly. The brands that ChainIcon draws itself are not among them.
const QHash<QString, ChainMark>& byName();

} // namespace ChainMarks
} // namespace torvane

#pragma once

#include <QPointF>
#include <QVarLengthArray>

/// Arcs of ellipses as paths need them.
namespace torvane {

/// A cubic Bézier curve from where the one before it ended.
struct CubicSegment {
    QPointF first;
    QPointF second;
    QPointF end;
};

/// An arc in the endpoint parameterisation of SVG 1.1 (appendix F.6).
struct EllipticalArc {
    QPointF from;
    QPointF to;
    QPointF radii;      ///< not 0; their signs do not count; scaled up when the ellipse cannot reach both ends
    double degrees = 0; ///< from the x axis of the plane to that of the ellipse
    bool large = false; ///< the longer way round
    bool sweep = false; ///< towards growing angles

    /// Cubic curves of a quarter turn at most, four or less, which follow the arc as nearly as a cubic can. Some are
    /// not finite when the radii and the distance between the ends differ beyond what floating point can bring
    /// together.
    QVarLengthArray<CubicSegment, 5> segments() const;
};

} // namespace torvane

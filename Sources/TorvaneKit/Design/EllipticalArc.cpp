#include "Design/EllipticalArc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace torvane {

namespace {

using std::numbers::pi;

struct Rotation {
    double cosine;
    double sine;

    static Rotation by(double angle) { return {std::cos(angle), std::sin(angle)}; }

    QPointF apply(QPointF p) const { return {cosine * p.x() - sine * p.y(), sine * p.x() + cosine * p.y()}; }
    QPointF undo(QPointF p) const { return {cosine * p.x() + sine * p.y(), cosine * p.y() - sine * p.x()}; }

    /// How far along their tangents, in radii, a cubic curve has its control points that turns by this much.
    double reach() const {
        const double halfTangent = sine / (1 + cosine);
        return sine * (std::sqrt(4 + 3 * halfTangent * halfTangent) - 1) / 3;
    }
};

/// The direction of growing angles at a point of the unit circle.
QPointF tangent(QPointF p) {
    return {-p.y(), p.x()};
}

/// The angle from u to v, -2 pi to 2 pi, its sign as `sweep` says.
double turnFrom(QPointF u, QPointF v, bool sweep) {
    const double angle = std::atan2(u.x() * v.y() - u.y() * v.x(), QPointF::dotProduct(u, v));
    if (!sweep && angle > 0)
        return angle - 2 * pi;
    return sweep && angle < 0 ? angle + 2 * pi : angle;
}

/// Half the chord and the centre, seen from the chord's middle, where the ellipse is the unit circle about its centre:
/// there every step of the appendix is one about a circle, and no square of a radius can overflow.
struct UnitCircle {
    QPointF half;
    QPointF centre;
    double scale; ///< what both radii must grow by to reach the ends
};

UnitCircle unitCircle(const EllipticalArc& arc, const Rotation& rotation) {
    const QPointF across = rotation.undo((arc.from - arc.to) / 2);
    const QPointF half(across.x() / std::abs(arc.radii.x()), across.y() / std::abs(arc.radii.y()));
    const double length = std::hypot(half.x(), half.y());
    if (length >= 1)
        return {half / length, {}, length};
    const double distance = std::sqrt((1 - length) * (1 + length)) / (arc.large != arc.sweep ? length : -length);
    return {half, QPointF(half.y(), -half.x()) * distance, 1};
}

} // namespace

QVarLengthArray<CubicSegment, 5> EllipticalArc::segments() const {
    const Rotation rotation = Rotation::by(degrees * pi / 180);
    const UnitCircle circle = unitCircle(*this, rotation);
    QPointF onCircle = circle.half - circle.centre;
    const double turn = turnFrom(onCircle, -circle.half - circle.centre, sweep);
    if (!std::isfinite(turn))
        return {CubicSegment{from, QPointF(turn, turn), to}};

    // Rounding makes many a quarter turn a little more than one: that much is no reason for another segment.
    const int count = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (pi / 2) - 1e-9)));
    const Rotation step = Rotation::by(turn / count);
    const double reach = step.reach();
    const QPointF size(std::abs(radii.x()) * circle.scale, std::abs(radii.y()) * circle.scale);
    const auto ofEllipse = [&](QPointF p) { return rotation.apply({size.x() * p.x(), size.y() * p.y()}); };
    const QPointF middle = from + (to - from) / 2;

    QVarLengthArray<CubicSegment, 5> result;
    QPointF last = from;
    QPointF direction = ofEllipse(tangent(onCircle)) * reach;
    for (int i = 1; i <= count; ++i) {
        onCircle = step.apply(onCircle);
        // The last one ends at the point given, not where rounding has taken it.
        const QPointF end = i == count ? to : ofEllipse(onCircle + circle.centre) + middle;
        const QPointF nextDirection = ofEllipse(tangent(onCircle)) * reach;
        result.append({last + direction, end - nextDirection, end});
        last = end;
        direction = nextDirection;
    }
    return result;
}

} // namespace torvane

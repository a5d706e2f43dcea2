#include "Design/EllipticalArc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace torvane {

namespace {

using std::numbers::pi;

/// The rotation of the ellipse against the plane.
struct Rotation {
    double cosine;
    double sine;

    QPointF apply(QPointF p) const { return {cosine * p.x() - sine * p.y(), sine * p.x() + cosine * p.y()}; }
    QPointF undo(QPointF p) const { return {cosine * p.x() + sine * p.y(), cosine * p.y() - sine * p.x()}; }
};

/// The angle from u to v, -pi to pi.
double angleBetween(QPointF u, QPointF v) {
    return std::atan2(u.x() * v.y() - u.y() * v.x(), QPointF::dotProduct(u, v));
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
    const double phi = degrees * pi / 180;
    const Rotation rotation{std::cos(phi), std::sin(phi)};
    const UnitCircle circle = unitCircle(*this, rotation);
    const QPointF begin = circle.half - circle.centre;
    double turn = angleBetween(begin, -circle.half - circle.centre);
    if (!sweep && turn > 0)
        turn -= 2 * pi;
    else if (sweep && turn < 0)
        turn += 2 * pi;

    if (!std::isfinite(turn))
        return {CubicSegment{from, QPointF(turn, turn), to}};
    const int count = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (pi / 2))));
    const double step = turn / count;
    const double tangent = std::tan(step / 2);
    const double reach = std::sin(step) * (std::sqrt(4 + 3 * tangent * tangent) - 1) / 3;
    const QPointF size(std::abs(radii.x()) * circle.scale, std::abs(radii.y()) * circle.scale);
    const auto ofEllipse = [&](QPointF p) { return rotation.apply({size.x() * p.x(), size.y() * p.y()}); };
    const QPointF middle = from + (to - from) / 2;

    QVarLengthArray<CubicSegment, 5> result;
    double angle = std::atan2(begin.y(), begin.x());
    QPointF last = from;
    QPointF direction = ofEllipse({-std::sin(angle), std::cos(angle)}) * reach;
    for (int i = 1; i <= count; ++i) {
        angle += step;
        const QPointF onCircle(std::cos(angle), std::sin(angle));
        // The last one ends at the point given, not where rounding has taken it.
        const QPointF end = i == count ? to : ofEllipse(onCircle + circle.centre) + middle;
        const QPointF nextDirection = ofEllipse({-onCircle.y(), onCircle.x()}) * reach;
        result.append({last + direction, end - nextDirection, end});
        last = end;
        direction = nextDirection;
    }
    return result;
}

} // namespace torvane

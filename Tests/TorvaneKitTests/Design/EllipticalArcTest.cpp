#include "Design/EllipticalArc.h"

#include <QTest>

#include <cmath>
#include <numbers>

using namespace torvane;

namespace {

double distance(QPointF one, QPointF other) {
    return std::hypot(one.x() - other.x(), one.y() - other.y());
}

QPointF onCurve(QPointF from, const CubicSegment& segment, double t) {
    const double s = 1 - t;
    return from * s * s * s + segment.first * 3 * s * s * t + segment.second * 3 * s * t * t + segment.end * t * t * t;
}

/// The middle of a circle's arc, and the angle that its points pass about the given centre.
double turn(const EllipticalArc& arc, QPointF centre) {
    double angle = 0;
    QPointF last = arc.from - centre;
    QPointF from = arc.from;
    for (const CubicSegment& segment : arc.segments()) {
        for (int i = 1; i <= 100; ++i) {
            const QPointF next = onCurve(from, segment, i / 100.0) - centre;
            angle += std::atan2(last.x() * next.y() - last.y() * next.x(), QPointF::dotProduct(last, next));
            last = next;
        }
        from = segment.end;
    }
    return angle * 180 / std::numbers::pi;
}

/// The largest distance of the arc's points from a circle, in radii.
double deviation(const EllipticalArc& arc, QPointF centre, double radius) {
    double largest = 0;
    QPointF from = arc.from;
    for (const CubicSegment& segment : arc.segments()) {
        for (int i = 0; i <= 100; ++i) {
            const double reached = distance(onCurve(from, segment, i / 100.0), centre);
            largest = std::max(largest, std::abs(reached / radius - 1));
        }
        from = segment.end;
    }
    return largest;
}

} // namespace

class EllipticalArcTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void flagsChooseOneOfFourArcs() {
        // From the right end to the lower end of circles about (0, 0) and (10, 10); y points down.
        const QPointF from(10, 0);
        const QPointF to(0, 10);
        const QPointF radii(10, 10);
        const auto turned = [&](bool large, bool sweep, QPointF centre) {
            return qRound(turn({from, to, radii, 0, large, sweep}, centre));
        };
        QCOMPARE(turned(false, true, {0, 0}), 90);
        QCOMPARE(turned(true, false, {0, 0}), -270);
        QCOMPARE(turned(false, false, {10, 10}), -90);
        QCOMPARE(turned(true, true, {10, 10}), 270);
    }

    void arcsFollowTheirCircle_data() {
        QTest::addColumn<double>("degrees");
        QTest::addColumn<int>("segments");
        for (int degrees = 10; degrees < 360; degrees += 10)
            QTest::addRow("%d degrees", degrees) << double(degrees) << (degrees + 89) / 90;
    }

    void arcsFollowTheirCircle() {
        QFETCH(double, degrees);
        QFETCH(int, segments);
        const QPointF centre(3, -4);
        const double radius = 7;
        const double angle = degrees * std::numbers::pi / 180;
        const QPointF to = centre + radius * QPointF(std::cos(angle), std::sin(angle));
        const EllipticalArc arc{centre + QPointF(radius, 0), to, {radius, radius}, 0, degrees > 180, true};
        QCOMPARE(arc.segments().size(), segments);
        QVERIFY(std::abs(turn(arc, centre) - degrees) < 0.001);
        QVERIFY(deviation(arc, centre, radius) < 0.003);
        QCOMPARE(arc.segments().last().end, to);
    }

    void theControlsOfAQuarterAreThoseOfTheFormula() {
        const EllipticalArc quarter{{1, 0}, {0, 1}, {1, 1}, 0, false, true};
        const double reach = (std::sqrt(7.0) - 1) / 3; // sin 90° (√(4 + 3 tan² 45°) − 1) / 3
        QCOMPARE(quarter.segments().size(), 1);
        QVERIFY(distance(quarter.segments().first().first, {1, reach}) < 1e-12);
        QVERIFY(distance(quarter.segments().first().second, {reach, 1}) < 1e-12);
    }

    void ellipsesAreCirclesStretchedAndTurned() {
        // About the origin, 4 wide and 2 high, turned by 30 degrees: a quarter between the ends of its axes.
        const double angle = std::numbers::pi / 6;
        const QPointF wide = 4 * QPointF(std::cos(angle), std::sin(angle));
        const QPointF high = 2 * QPointF(-std::sin(angle), std::cos(angle));
        const EllipticalArc arc{wide, high, {4, 2}, 30, false, true};
        QCOMPARE(arc.segments().size(), 1);
        const double reach = (std::sqrt(7.0) - 1) / 3;
        QVERIFY(distance(arc.segments().first().first, wide + reach * high) < 1e-12);
        QVERIFY(distance(arc.segments().first().second, high + reach * wide) < 1e-12);
        const EllipticalArc turned{wide, high, {2, 4}, 120, false, true};
        QVERIFY(distance(turned.segments().first().first, arc.segments().first().first) < 1e-12);
    }

    void theSignsOfRadiiDoNotCount() {
        const EllipticalArc arc{{0, 0}, {6, 2}, {5, 7}, 20, true, false};
        EllipticalArc negative = arc;
        negative.radii = {-5, -7};
        for (qsizetype i = 0; i < arc.segments().size(); ++i)
            QCOMPARE(negative.segments()[i].first, arc.segments()[i].first);
    }

    void radiiThatAreTooSmallGrow() {
        // The ends lie 10 apart: it takes a radius of 5.
        for (const double radius : {4.9999, 1.0, 1e-9, 1e-300}) {
            const EllipticalArc arc{{0, 0}, {10, 0}, {radius, radius}, 0, false, true};
            QCOMPARE(arc.segments().size(), 2);
            QVERIFY(distance(arc.segments().first().end, {5, -5}) < 1e-9);
        }
        // 12 to 1 wide: the shape stays.
        const EllipticalArc wide{{0, 0}, {24, 0}, {6, 0.5}, 0, false, true};
        QVERIFY(distance(wide.segments().first().end, {12, -1}) < 1e-9);
    }

    void anArcOfAnImmenseCircleIsNearlyALine() {
        const EllipticalArc arc{{0, 0}, {10, 0}, {1e100, 1e100}, 0, false, true};
        QCOMPARE(arc.segments().size(), 1);
        QVERIFY(distance(arc.segments().first().first, {10 / 3.0, 0}) < 1e-9);
        QVERIFY(distance(arc.segments().first().second, {20 / 3.0, 0}) < 1e-9);
    }

    void aNearlyFullTurnGoesRound() {
        const EllipticalArc arc{{5, 0}, {5, -1e-6}, {5, 5}, 0, true, true};
        QCOMPARE(arc.segments().size(), 4);
        QVERIFY(std::abs(turn(arc, {0, 0}) - 360) < 0.01);
    }
};

QTEST_APPLESS_MAIN(EllipticalArcTest)
#include "EllipticalArcTest.moc"

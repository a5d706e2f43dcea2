#include "Views/Sparkline.h"

#include "Support/PaintCounter.h"
#include "Support/SampleSnapshot.h"

#include <QTest>

#include <algorithm>
#include <limits>
#include <numeric>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF box(106, 46); // 100 by 40 within the inset.

QImage drawn(const QList<double>& values) {
    Sparkline sparkline;
    sparkline.resize(106, 46);
    sparkline.setSeries(u"A"_s, values);
    QImage image(106, 46, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    sparkline.render(&image, {}, {}, {});
    return image;
}

/// The same colour but for its coverage: the line's edges lie within pixels.
bool isNear(const QColor& a, const QColor& b) {
    return a.alpha() > 180 && std::abs(a.red() - b.red()) < 3 && std::abs(a.green() - b.green()) < 3 &&
           std::abs(a.blue() - b.blue()) < 3;
}

/// The first and the last row that the line touches.
std::pair<int, int> inkedRows(const QImage& image) {
    std::pair rows(image.height(), -1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 40) // More than the area below it.
                rows = {std::min(rows.first, y), y};
        }
    }
    return rows;
}

} // namespace

class SparklineTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }

    void fewerThanTwoValuesHaveNoPoints() {
        QVERIFY(Sparkline::points({}, box).isEmpty());
        QVERIFY(Sparkline::points({5}, box).isEmpty());
        QVERIFY(Sparkline::line({}).isEmpty());
        QVERIFY(Sparkline::area({}, 46).isEmpty());
    }

    void pointsAreInsetAndEvenlySpacedAndHighWhereValuesAreLarge() {
        const QList<QPointF> expected{{3, 43}, {28, 23}, {53, 3}, {78, 33}, {103, 13}};
        QCOMPARE(Sparkline::points({10, 12, 14, 11, 13}, box), expected);
    }

    void negativeValuesHaveTheirPlace() {
        const QList<QPointF> expected{{3, 43}, {53, 23}, {103, 3}};
        QCOMPARE(Sparkline::points({-2, 0, 2}, box), expected);
    }

    void equalValuesLieAlongTheBottom() {
        const QList<QPointF> expected{{3, 43}, {53, 43}, {103, 43}};
        QCOMPARE(Sparkline::points({7, 7, 7}, box), expected);
        QCOMPARE(Sparkline::line(expected).boundingRect().height(), 0);
    }

    void aSpanLargerThanAnyNumberHasItsPlaceToo() {
        const double most = std::numeric_limits<double>::max();
        const QList<QPointF> expected{{3, 43}, {53, 23}, {103, 3}};
        QCOMPARE(Sparkline::points({-most, 0, most}, box), expected);
    }

    void theSmallestSpanIsNotTakenForNone() {
        const double least = std::numeric_limits<double>::denorm_min();
        const QList<QPointF> expected{{3, 43}, {103, 3}};
        QCOMPARE(Sparkline::points({0, least}, box), expected);
    }

    void theLineGoesStraightFromPointToPoint() {
        const QPainterPath line = Sparkline::line({{3, 43}, {53, 3}, {103, 23}});
        QCOMPARE(line.elementCount(), 3);
        QVERIFY(line.elementAt(0).isMoveTo());
        QVERIFY(line.elementAt(1).isLineTo());
        QCOMPARE(QPointF(line.elementAt(0)), QPointF(3, 43));
        QCOMPARE(QPointF(line.elementAt(1)), QPointF(53, 3));
        QCOMPARE(QPointF(line.elementAt(2)), QPointF(103, 23));
    }

    void theAreaReachesDownToTheBottomEdgeAndIsClosed() {
        const QPainterPath area = Sparkline::area({{3, 43}, {53, 3}, {103, 23}}, 46);
        const QList<QPointF> expected{{3, 46}, {3, 43}, {53, 3}, {103, 23}, {103, 46}, {3, 46}};
        QCOMPARE(area.elementCount(), expected.size());
        for (int i = 0; i < area.elementCount(); ++i)
            QCOMPARE(QPointF(area.elementAt(i)), expected[i]);
        QVERIFY(area.elementAt(0).isMoveTo());
    }

    void fewerThanTwoValuesDrawNothing() {
        const QImage nothing = drawn({});
        QCOMPARE(drawn({5}), nothing);
        for (int y = 0; y < nothing.height(); ++y) {
            for (int x = 0; x < nothing.width(); ++x)
                QCOMPARE(nothing.pixelColor(x, y).alpha(), 0);
        }
    }

    void theAreaIsAPaleShadeOfTheLine() {
        const QImage image = drawn({0, 1, 1, 0});
        const QColor ink = Palette::ink2.in(Appearance::light);
        QVERIFY(isNear(image.pixelColor(53, 3), ink));
        QCOMPARE(image.pixelColor(53, 40).alpha(), 31); // 12 % of 255
        QCOMPARE(image.pixelColor(53, 0).alpha(), 0);
    }

    void theColourFollowsTheAppearance() {
        Sparkline sparkline;
        sparkline.resize(106, 46);
        sparkline.setSeries(u"A"_s, {0, 1, 1, 0});
        for (const Appearance appearance : {Appearance::light, Appearance::dark, Appearance::light}) {
            setCurrentAppearance(appearance);
            QImage image(106, 46, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            sparkline.render(&image, {}, {}, {});
            QVERIFY(isNear(image.pixelColor(53, 3), Palette::ink2.in(appearance)));
        }
    }

    void aScreenOfTwiceTheScaleHasTwiceThePixels() {
        Sparkline sparkline;
        sparkline.resize(106, 46);
        sparkline.setSeries(u"A"_s, {0, 1, 1, 0});
        QImage image(212, 92, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(2);
        image.fill(Qt::transparent);
        sparkline.render(&image, {}, {}, {});
        // The line lies from 2.25 to 3.75: three whole pixels and none beside them.
        QCOMPARE(image.pixelColor(106, 3).alpha(), 0);
        QVERIFY(image.pixelColor(106, 5).alpha() > 240);
        QVERIFY(image.pixelColor(106, 6).alpha() > 240);
        QVERIFY(image.pixelColor(106, 9).alpha() < 60);
    }

    void theSeriesIsSharedNotCopied() {
        const QList<double> values{1, 2, 3};
        Sparkline sparkline;
        sparkline.setSeries(u"A"_s, values);
        QCOMPARE(sparkline.values().constData(), values.constData());
    }

    void aUsualSeriesIsDrawnAsItIs() {
        const QList<double> values = SampleSnapshot::walk(Sparkline::mostDrawn, 10, 4, 1);
        QCOMPARE(Sparkline::thinned(values).constData(), values.constData());
    }

    void aLongSeriesIsThinnedToItsPeaks() {
        QList<double> values = SampleSnapshot::walk(1'000'000, 10, 4, 1);
        values[123'457] = 50;
        values[800'001] = -3;
        const QList<double> thinned = Sparkline::thinned(values);
        QCOMPARE(thinned.size(), Sparkline::mostDrawn);
        QCOMPARE(thinned.first(), values.first());
        QCOMPARE(thinned.last(), values.last());
        // Where it stands in the series, as far as an eye can tell.
        const auto place = [&](double value) { return double(thinned.indexOf(value)) / double(thinned.size()); };
        QVERIFY(std::abs(place(50) - 0.123457) < 0.001);
        QVERIFY(std::abs(place(-3) - 0.800001) < 0.001);
    }

    void theValuesOfAStretchKeepTheirOrder() {
        QList<double> rising(10 * Sparkline::mostDrawn);
        std::iota(rising.begin(), rising.end(), 0.0);
        QList<double> thinned = Sparkline::thinned(rising);
        QVERIFY(std::is_sorted(thinned.cbegin(), thinned.cend()));
        std::reverse(rising.begin(), rising.end());
        thinned = Sparkline::thinned(rising);
        QVERIFY(std::is_sorted(thinned.crbegin(), thinned.crend()));
        // One more than are drawn leaves no stretch without values.
        rising.resize(Sparkline::mostDrawn + 1);
        QCOMPARE(Sparkline::thinned(rising).size(), Sparkline::mostDrawn);
    }

    void aMillionValuesReachAsHighAndAsLowAsTheyAre() {
        QList<double> values(1'000'000, 10.0);
        values[300'000] = 40;
        values[700'000] = 0;
        const QImage image = drawn(values);
        // By the places of the two peaks in the box: a third and two thirds of the way, at the top and at the bottom.
        const QImage few = drawn({10, 10, 10, 40, 10, 10, 10, 0, 10, 10, 10});
        QCOMPARE(inkedRows(image), inkedRows(few));
    }

    void aLongSeriesReadsAsAllItsFigures() {
        QList<double> values(1'000'000, 10.0);
        values[300'000] = 40;
        values[700'000] = 2;
        Sparkline sparkline;
        sparkline.setSeries(u"A"_s, values);
        QCOMPARE(sparkline.values().constData(), values.constData());
        QCOMPARE(sparkline.accessibleName(), u"A: lowest 2.0 gwei, highest 40.0 gwei, latest 10.0 gwei"_s);
    }

    void theSameSeriesIsNotDrawnAgain() {
        Sparkline sparkline;
        sparkline.setSeries(u"A"_s, {1, 2, 3});
        sparkline.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sparkline));
        PaintCounter paints(sparkline);
        sparkline.setSeries(u"A"_s, {1, 2, 3});
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
        sparkline.setSeries(u"A"_s, {1, 2, 4});
        QTRY_COMPARE(paints.count(), 1);
    }

    void aChartReadsAsItsHeadingAndFigures() {
        Sparkline sparkline;
        sparkline.setSeries(u"24H BASE FEE"_s, {12, 9.25, 24.8, 13});
        QAccessibleInterface* chart = QAccessible::queryAccessibleInterface(&sparkline);
        QVERIFY(chart);
        QCOMPARE(chart->role(), QAccessible::Chart);
        QCOMPARE(chart->text(QAccessible::Name),
                 u"24H BASE FEE: lowest 9.2 gwei, highest 24.8 gwei, latest 13.0 gwei"_s);
        QAccessibleValueInterface* value = chart->valueInterface();
        QVERIFY(value);
        QCOMPARE(value->minimumValue().toDouble(), 9.25);
        QCOMPARE(value->maximumValue().toDouble(), 24.8);
        QCOMPARE(value->currentValue().toDouble(), 13.0);
        value->setCurrentValue(1);
        QCOMPARE(value->currentValue().toDouble(), 13.0);
    }

    void anEmptyChartHasNoFigures() {
        Sparkline sparkline;
        QAccessibleInterface* chart = QAccessible::queryAccessibleInterface(&sparkline);
        QVERIFY(!chart->valueInterface());
        QCOMPARE(chart->text(QAccessible::Name), QString());
    }
};

QTEST_MAIN(SparklineTest)
#include "SparklineTest.moc"

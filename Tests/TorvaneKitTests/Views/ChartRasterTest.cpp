#include "Views/ChartRaster.h"

#include "Support/SampleSnapshot.h"
#include "Views/Sparkline.h"

#include <QPainter>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

const ChartInk ink{QColor(0x5C, 0x5B, 0x57), 1.5, 0.12};

/// The same chart by Qt's stroker and filler.
QImage stroked(const QList<QPointF>& points, QSizeF box, double scale) {
    QImage image((box * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor shade = ink.color;
    shade.setAlpha(31);
    painter.fillPath(Sparkline::area(points, box.height()), shade);
    painter.strokePath(Sparkline::line(points),
                       QPen(ink.color, ink.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    return image;
}

double meanDifference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(a.pixelColor(x, y).alpha() - b.pixelColor(x, y).alpha());
    }
    return sum / a.width() / a.height();
}

} // namespace

class ChartRasterTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsWhatAStrokerDraws_data() {
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<QSizeF>("box");
        const QList<std::pair<const char*, QList<double>>> series{{"two points", {1, 2}},
                                                                  {"flat", {3, 3, 3}},
                                                                  {"peaks", {0, 9, 0, 9, 4, 4, 9}},
                                                                  {"a day", SampleSnapshot::walk(96, 14, 6)},
                                                                  {"dense", SampleSnapshot::walk(288, 14, 6)}};
        for (const auto& [name, values] : series) {
            QTest::addRow("%s, small", name) << values << QSizeF(62, 24);
            QTest::addRow("%s, wide", name) << values << QSizeF(316, 46);
        }
    }

    void itIsWhatAStrokerDraws() {
        QFETCH(QList<double>, values);
        QFETCH(QSizeF, box);
        const QList<QPointF> points = Sparkline::points(values, box);
        for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
            const QImage ours = chartRaster(points, box, scale, ink);
            const QImage other = stroked(points, box, scale);
            QCOMPARE(ours.size(), other.size());
            const double blank = meanDifference(other, QImage(chartRaster({}, box, scale, ink)));
            QVERIFY2(meanDifference(ours, other) < 0.1 * blank,
                     qPrintable(u"%1 of %2"_s.arg(meanDifference(ours, other)).arg(blank)));
        }
    }

    void aLineOnWholePixelsIsCrisp() {
        const QImage image = chartRaster({{2, 5.5}, {8, 5.5}}, {10, 10}, 2, {Qt::black, 1, 0});
        QCOMPARE(image.pixelColor(10, 9).alpha(), 0);
        QCOMPARE(image.pixelColor(10, 10).alpha(), 255);
        QCOMPARE(image.pixelColor(10, 11).alpha(), 255);
        QCOMPARE(image.pixelColor(10, 12).alpha(), 0);
    }

    void theAreaFillsItsShareOfEachPixel() {
        const QImage image = chartRaster({{2.5, 4.5}, {8, 4.5}}, {10, 10}, 1, {Qt::black, 0, 1});
        QCOMPARE(image.pixelColor(5, 9).alpha(), 255);
        QCOMPARE(image.pixelColor(2, 9).alpha(), 128);
        QCOMPARE(image.pixelColor(1, 9).alpha(), 0);
        QCOMPARE(image.pixelColor(8, 9).alpha(), 0);
        QCOMPARE(image.pixelColor(5, 3).alpha(), 0);
    }

    void pointsOutsideTheBoxAreCutOff() {
        const QImage image = chartRaster({{-50, -50}, {50, 50}}, {10, 10}, 1, ink);
        QCOMPARE(image.size(), QSize(10, 10));
        QVERIFY(image.pixelColor(5, 5).alpha() > 200);
    }

    void noPointsAreNothing() {
        const QImage image = chartRaster({}, {10, 10}, 1, ink);
        QCOMPARE(image.pixelColor(5, 5).alpha(), 0);
    }

    void pointsInOnePlaceAreADot() {
        const QImage image = chartRaster({{5, 5}, {5, 5}, {5, 5}}, {10, 10}, 2, ink);
        QVERIFY(image.pixelColor(10, 10).alpha() > 200);
        QCOMPARE(image.pixelColor(14, 10).alpha(), 0);
    }
};

QTEST_MAIN(ChartRasterTest)
#include "ChartRasterTest.moc"

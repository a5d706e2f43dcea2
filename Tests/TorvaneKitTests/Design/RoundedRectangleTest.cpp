#include "Design/RoundedRectangle.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTest>

#include <algorithm>

using namespace torvane;

/// Each picture is compared with the same one painted by paths.
class RoundedRectangleTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looksAsItsPathsDo_data();
    void looksAsItsPathsDo();
    void isPaintedAlikeAgain();
    void keepsToTheClip();
    void leavesThePainterAsItWas();
};

namespace {

constexpr QRgb ground = 0xff204060;
constexpr double radius = 9;

const QList<Coat> card{{0.25, 0, 0x1a102030}, {0, 0.5, 0x66ffffff}};
const QList<Coat> glass{{0, 0, 0xfff0f0e0}, {0, 1, 0x33000000}, {1, 0.5, 0x99ffffff}};

QImage canvas(double scale) {
    QImage image(QSize(200, 300) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    return image;
}

QImage painted(const QRectF& rectangle, const QList<Coat>& coats, double scale, double opacity = 1) {
    QImage image = canvas(scale);
    QPainter painter(&image);
    painter.setOpacity(opacity);
    paintRoundedRectangle(painter, rectangle, radius, coats);
    return image;
}

QPainterPath rounded(const QRectF& rectangle, double inset) {
    QPainterPath path;
    path.addRoundedRect(rectangle.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    return path;
}

QImage paintedByPaths(const QRectF& rectangle, const QList<Coat>& coats, double scale, double opacity = 1) {
    QImage image = canvas(scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity);
    for (const Coat& coat : coats) {
        QPainterPath path = rounded(rectangle, coat.inset);
        if (coat.width > 0)
            path.addPath(rounded(rectangle, coat.inset + coat.width));
        painter.fillPath(path, QColor::fromRgba(coat.color));
    }
    return image;
}

/// By how much the most different channel of two pictures differs.
int difference(const QImage& a, const QImage& b) {
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            most = std::max({most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                             std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    }
    return most;
}

/// Coats that are blended with each other first are rounded once less.
constexpr int roundingError = 3;

} // namespace

void RoundedRectangleTest::looksAsItsPathsDo_data() {
    QTest::addColumn<QRectF>("rectangle");
    QTest::addColumn<QList<Coat>>("coats");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("opacity");
    const QRectF usual(10, 20, 104, 73);
    const auto row = [](const char* name, const QRectF& rectangle, const QList<Coat>& coats, double scale,
                        double opacity = 1) { QTest::newRow(name) << rectangle << coats << scale << opacity; };
    row("a card", usual, card, 1);
    row("a card on a fine screen", usual, card, 2);
    row("a card on a very fine screen", usual, card, 3);
    row("at an odd scale, between pixels", usual, card, 1.5);
    row("at an odd scale, on whole pixels", {10, 20, 104, 74}, card, 1.5);
    row("opaque", usual, glass, 1);
    row("opaque on a fine screen", usual, glass, 2);
    row("tall", {3, 2, 190, 290}, card, 1);
    row("half a pixel off", usual.translated(0, 0.5), card, 1);
    row("half a pixel off on a fine screen", usual.translated(0, 0.5), card, 2);
    row("no higher than its corners", {10, 20, 104, 18}, card, 1);
    row("three pixels higher", {10, 20, 104, 21}, card, 1);
    row("a little higher", {10, 20, 104, 22}, card, 1);
    row("lower than its corners", {10, 20, 104, 5}, card, 2);
    row("without a width", {10, 20, 0, 40}, card, 1);
    row("half transparent", usual, {glass.first()}, 1, 0.5);
}

void RoundedRectangleTest::looksAsItsPathsDo() {
    QFETCH(QRectF, rectangle);
    QFETCH(QList<Coat>, coats);
    QFETCH(double, scale);
    QFETCH(double, opacity);
    const QImage ours = painted(rectangle, coats, scale, opacity);
    QCOMPARE_LE(difference(ours, paintedByPaths(rectangle, coats, scale, opacity)), roundingError);
    if (!rectangle.isEmpty()) // Two empty pictures would be alike as well.
        QCOMPARE_GT(difference(ours, canvas(scale)), roundingError);
}

/// What is kept of one look serves no other one, nor another size.
void RoundedRectangleTest::isPaintedAlikeAgain() {
    const QRectF rectangle(10, 20, 104, 73);
    const QImage first = painted(rectangle, card, 2);
    painted(rectangle, glass, 2);
    painted(rectangle, card, 1);
    painted({10, 20, 60, 90}, card, 2);
    QCOMPARE(painted(rectangle, card, 2), first);
}

void RoundedRectangleTest::keepsToTheClip() {
    QImage image = canvas(1);
    QPainter painter(&image);
    painter.setClipRect(0, 0, 100, 60);
    paintRoundedRectangle(painter, {10, 20, 104, 73}, radius, glass);
    QCOMPARE(image.pixel(50, 59), glass.first().color);
    QCOMPARE(image.pixel(50, 60), ground);
    QCOMPARE(image.pixel(100, 50), ground);
}

void RoundedRectangleTest::leavesThePainterAsItWas() {
    QImage image = canvas(2);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::red);
    painter.translate(3, 4);
    const QTransform before = painter.transform();
    paintRoundedRectangle(painter, {10, 20, 104, 73}, radius, card);
    QVERIFY(painter.testRenderHint(QPainter::Antialiasing));
    QCOMPARE(painter.pen().color(), QColor(Qt::red));
    QCOMPARE(painter.transform(), before);
}

QTEST_MAIN(RoundedRectangleTest)
#include "RoundedRectangleTest.moc"

#include "Views/CachedDrawing.h"

#include <QImage>
#include <QTest>

using namespace torvane;

namespace {

constexpr QRectF tile{0, 0, 10, 8};

/// A drawing of a number: a field of one colour, which counts how often it was drawn.
struct Field {
    QColor color = Qt::red;
    int draws = 0;

    void operator()(QPainter& painter, const QRectF& area) {
        ++draws;
        painter.fillRect(area, color);
    }
};

QImage canvas(double scale = 1) {
    QImage image((QSizeF(40, 40) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

/// Paints it once, and gives what is there.
QImage painted(CachedDrawing<int>& drawing, int subject, Field& field, const QRectF& target = tile, double scale = 1) {
    QImage image = canvas(scale);
    QPainter painter(&image);
    drawing.paint(painter, target, subject, [&field](QPainter& on, const QRectF& area) { field(on, area); });
    return image;
}

} // namespace

/// The subjects of different functions are different numbers: what is kept outlives a function.
class CachedDrawingTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }

    void whatWasDrawnIsCopiedFromThenOn() {
        CachedDrawing<int> drawing;
        Field field;
        const QImage first = painted(drawing, 1, field);
        QCOMPARE(painted(drawing, 1, field), first);
        QCOMPARE(field.draws, 1);
        QCOMPARE(first.pixelColor(9, 7), QColor(Qt::red));
        QCOMPARE(first.pixelColor(10, 7), QColor(Qt::transparent));
    }

    void itStandsWhereItIsPainted() {
        CachedDrawing<int> drawing;
        Field field;
        const QImage image = painted(drawing, 2, field, tile.translated(5, 6));
        QCOMPARE(image.pixelColor(4, 6), QColor(Qt::transparent));
        QCOMPARE(image.pixelColor(5, 6), QColor(Qt::red));
        QCOMPARE(image.pixelColor(14, 13), QColor(Qt::red));
        QCOMPARE(painted(drawing, 2, field).pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(field.draws, 1);
    }

    void afterAChangeItIsDrawnAnewOnlyWhenItWasInvalidated() {
        CachedDrawing<int> drawing;
        Field field;
        painted(drawing, 3, field);
        field.color = Qt::blue;
        QCOMPARE(painted(drawing, 4, field).pixelColor(0, 0), QColor(Qt::red)); // The subject is not looked at.
        drawing.invalidate();
        QCOMPARE(painted(drawing, 4, field).pixelColor(0, 0), QColor(Qt::blue));
        QCOMPARE(field.draws, 2);
    }

    void anotherSizeScaleOrAppearanceIsDrawnAnew() {
        CachedDrawing<int> drawing;
        Field field;
        painted(drawing, 5, field);
        QCOMPARE(painted(drawing, 5, field, {0, 0, 12, 8}).pixelColor(11, 7), QColor(Qt::red));
        QCOMPARE(field.draws, 2);
        QCOMPARE(painted(drawing, 5, field, tile, 2).pixelColor(19, 15), QColor(Qt::red));
        QCOMPARE(field.draws, 3);
        setCurrentAppearance(Appearance::dark);
        painted(drawing, 5, field);
        QCOMPARE(field.draws, 4);
    }

    void drawingsOfOneSubjectShareTheirPixelsAlsoWithLaterOnes() {
        Field field;
        {
            CachedDrawing<int> one;
            CachedDrawing<int> other;
            painted(one, 6, field);
            painted(other, 6, field);
        }
        CachedDrawing<int> later;
        QCOMPARE(painted(later, 6, field).pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(field.draws, 1);
        painted(later, 6, field, tile, 2);
        QCOMPARE(field.draws, 2);
    }

    void whatWasNotUsedForLongestIsForgottenFirst() {
        constexpr QRectF large{0, 0, 200, 200}; // Three of these are all that is kept.
        Field field;
        for (const int subject : {10, 11, 12}) {
            CachedDrawing<int> drawing;
            painted(drawing, subject, field, large);
        }
        CachedDrawing<int> used;
        painted(used, 10, field, large);
        QCOMPARE(field.draws, 3);
        CachedDrawing<int> fourth;
        painted(fourth, 13, field, large);
        QCOMPARE(field.draws, 4);
        CachedDrawing<int> kept;
        painted(kept, 10, field, large);
        QCOMPARE(field.draws, 4);
        CachedDrawing<int> forgotten;
        painted(forgotten, 11, field, large);
        QCOMPARE(field.draws, 5);
    }

    void whatIsLargerThanAllThatIsKeptIsShownAllTheSame() {
        constexpr QRectF huge{0, 0, 400, 400};
        CachedDrawing<int> drawing;
        Field field;
        QCOMPARE(painted(drawing, 20, field, huge).pixelColor(39, 39), QColor(Qt::red));
        painted(drawing, 20, field, huge);
        QCOMPARE(field.draws, 1);
        CachedDrawing<int> other;
        painted(other, 20, field, huge);
        QCOMPARE(field.draws, 2);
    }
};

QTEST_MAIN(CachedDrawingTest)
#include "CachedDrawingTest.moc"

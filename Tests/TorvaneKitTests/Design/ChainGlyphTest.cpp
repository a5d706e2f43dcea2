#include "Design/ChainGlyph.h"

#include "Design/ChainMarksMono.h"
#include "TorvaneKitTests/Design/Drawn.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

QImage glyph(const QString& name, int side, const QColor& foreground = Qt::black) {
    return drawn(side,
                 [&](QPainter& painter) { ChainGlyph::paint(painter, QRectF(0, 0, side, side), name, foreground); });
}

/// Those with artwork, and one without.
QStringList networks() {
    QStringList names = ChainMarksMono::byName().keys();
    names.append(u"Blast"_s);
    return names;
}

} // namespace

class ChainGlyphTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyTheForegroundIsDrawn_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("nothing") << QString();
        for (const QString& name : networks())
            QTest::newRow(qPrintable(name)) << name;
    }

    // A template image is tinted by its opacity: every pixel is the foreground, more or less of it.
    void onlyTheForegroundIsDrawn() {
        QFETCH(QString, name);
        const QImage image = glyph(name, 30, Qt::red);
        const auto isRed = [](QRgb pixel) { return qRed(pixel) == qAlpha(pixel) && qGreen(pixel) + qBlue(pixel) == 0; };
        QCOMPARE(countPixels(image, isRed), 30 * 30);
        QVERIFY(countPixels(image, [](QRgb pixel) { return qAlpha(pixel) == 255; }) > 60);
    }

    void aTranslucentForegroundIsNowhereLaidOnTwice() {
        for (const QString& name : networks()) {
            const QImage image = glyph(name, 30, QColor(0, 0, 0, 100));
            QCOMPARE(countPixels(image, [](QRgb pixel) { return qAlpha(pixel) > 101; }), 0);
        }
    }

    void aNameWithoutArtworkIsATileWithItsLetterCutOut() {
        const QImage tile = glyph(QString(), 48);
        QCOMPARE(qAlpha(tile.pixel(24, 24)), 255);
        QCOMPARE(qAlpha(tile.pixel(0, 0)), 0);
        const QImage lettered = glyph(u"blast"_s, 48);
        QCOMPARE(qAlpha(lettered.pixel(24, 4)), 255);
        const auto isClear = [](QRgb pixel) { return qAlpha(pixel) == 0; };
        QVERIFY(countPixels(lettered, isClear) > countPixels(tile, isClear) + 48);
        QVERIFY(visibleDifference(lettered, glyph(u"Polygon"_s, 48)) > 20);
        QCOMPARE(lettered, glyph(u"Boba"_s, 48));
    }

    // O has a middle of its own: it stays.
    void theMiddleOfALetterIsNotCutOut() {
        const QImage image = glyph(u"orbit"_s, 48);
        QCOMPARE(qAlpha(image.pixel(24, 24)), 255);
        bool crossed = false;
        for (int x = 6; x < 24; ++x)
            crossed = crossed || qAlpha(image.pixel(x, 24)) == 0;
        QVERIFY(crossed);
    }

    void namesMatchExactly() { QVERIFY(glyph(u"Ethereum"_s, 24) != glyph(u"ETHEREUM"_s, 24)); }

    void anEmptySquareDrawsNothing() {
        QVERIFY(isBlank(drawn(24, [](QPainter& painter) {
            ChainGlyph::paint(painter, QRectF(0, 0, 0, 24), u"Base"_s, Qt::black);
            ChainGlyph::paint(painter, QRectF(12, 12, -4, -4), u"Blast"_s, Qt::black);
        })));
    }
};

QTEST_MAIN(ChainGlyphTest)
#include "ChainGlyphTest.moc"

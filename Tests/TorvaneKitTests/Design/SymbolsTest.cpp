#include "Design/Symbols.h"

#include "Design/Artwork.h"
#include "TorvaneKitTests/Design/Drawn.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

QImage symbol(const QString& name, int side, const QColor& color = Qt::black) {
    return drawn(side, [&](QPainter& painter) { Symbols::paint(painter, QRectF(0, 0, side, side), name, color); });
}

void addNames() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"fuelpump.fill", "slider.horizontal.3", "square.stack.3d.up", "menubar.rectangle", "bell",
                             "paintpalette", "info.circle", "minus", "plus", "chevron.down"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

} // namespace

class SymbolsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everySymbolIsReadAndStaysInItsBox_data() { addNames(); }

    void everySymbolIsReadAndStaysInItsBox() {
        QFETCH(QString, name);
        QVERIFY(Symbols::byName().contains(name));
        const Symbol drawing = Symbols::byName().value(name);
        QCOMPARE(Artwork::path(drawing.filled).isEmpty(), drawing.filled.isEmpty());
        QCOMPARE(Artwork::path(drawing.stroked).isEmpty(), drawing.stroked.isEmpty());
        const double margin = drawing.strokeWidth / 2;
        const QRectF line = Artwork::path(drawing.stroked).boundingRect().adjusted(-margin, -margin, margin, margin);
        QVERIFY(QRectF(0, 0, 24, 24).contains(Artwork::path(drawing.filled).boundingRect() | line));
    }

    void everySymbolIsSeenAtTheSmallestSize_data() { addNames(); }

    void everySymbolIsSeenAtTheSmallestSize() {
        QFETCH(QString, name);
        const QImage image = symbol(name, 12, Qt::red);
        QVERIFY(countPixels(image, [](QRgb pixel) { return qAlpha(pixel) > 100; }) >= 8);
        QCOMPARE(countPixels(image, [](QRgb pixel) { return qRed(pixel) != qAlpha(pixel); }), 0);
    }

    void symbolsAreToldApartAtTheSmallestSize() {
        const QStringList names = Symbols::byName().keys();
        for (const QString& left : names) {
            for (const QString& right : names)
                QVERIFY(left == right || visibleDifference(symbol(left, 12), symbol(right, 12)) >= 8);
        }
    }

    void aLineThroughTheMiddleLiesOnWholePixels_data() {
        QTest::addColumn<int>("side");
        QTest::addColumn<int>("width");
        QTest::newRow("one pixel") << 12 << 1;
        QTest::newRow("two pixels") << 24 << 2;
        QTest::newRow("three pixels") << 36 << 3;
        QTest::newRow("four pixels") << 48 << 4;
    }

    void aLineThroughTheMiddleLiesOnWholePixels() {
        QFETCH(int, side);
        QFETCH(int, width);
        for (const QString& name : {u"minus"_s, u"plus"_s}) {
            const QImage image = symbol(name, side);
            int opaque = 0;
            for (int y = 0; y < side; ++y) {
                const int alpha = qAlpha(image.pixel(side / 3, y)); // beside the upright of the plus
                QVERIFY(alpha == 0 || alpha == 255);
                opaque += alpha == 255 ? 1 : 0;
            }
            QCOMPARE(opaque, width);
        }
    }

    void theStemOfAnIIsOneColumnAtTheSmallestSize() {
        const QImage image = symbol(u"info.circle"_s, 12);
        QList<int> seen;
        for (int x = 4; x <= 8; ++x) {
            if (const int alpha = qAlpha(image.pixel(x, 7)); alpha > 32)
                seen.append(alpha);
        }
        QCOMPARE(seen.size(), 1);
        QVERIFY(seen.first() > 200);
    }

    void anUnknownNameDrawsNothing() {
        for (const QString& name : {QString(), u"Bell"_s, u"bell.fill"_s})
            QVERIFY(isBlank(symbol(name, 24)));
    }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"

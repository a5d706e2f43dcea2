#include "Design/ChainIcon.h"

#include "Design/ChainMarksMono.h"
#include "TorvaneKitTests/Design/Drawn.h"

#include <QPaintEvent>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

QImage icon(const QString& name, int side) {
    return drawn(side, [&](QPainter& painter) { ChainIcon::paint(painter, QRectF(0, 0, side, side), name); });
}

/// A square of 16 units with one of 8 in it, both drawn in the same direction.
ChainMark nestedSquares(bool evenOdd) {
    return {0x102030, {{u"M4 4H20V20H4ZM8 8H16V16H8Z"_s, 0xFFFFFF, evenOdd}}};
}

class PaintCounter final : public QObject {
public:
    int paints = 0;

    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

class ChainIconTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aBrandIsKnownInUpperAndLowerCase_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QColor>("color");
        QTest::newRow("Ethereum") << u"Ethereum"_s << u"ethereum"_s << QColor(98, 126, 234);
        QTest::newRow("ETHEREUM") << u"ETHEREUM"_s << u"ethereum"_s << QColor(98, 126, 234);
        QTest::newRow("Arbitrum") << u"Arbitrum"_s << u"arbitrum"_s << QColor(27, 74, 221);
        QTest::newRow("oPTIMISM") << u"oPTIMISM"_s << u"optimism"_s << QColor(255, 4, 32);
        QTest::newRow("base") << u"base"_s << u"base"_s << QColor(0, 82, 255);
    }

    void aBrandIsKnownInUpperAndLowerCase() {
        QFETCH(QString, name);
        QFETCH(QString, key);
        QFETCH(QColor, color);
        QCOMPARE(ChainIcon::info(name).key, key);
        QCOMPARE(ChainIcon::info(name).color, color);
    }

    // h = h * 33 + byte from 5381 on, in 64 bits; h mod 360 is the hue; red, green and blue at 0.65 and 0.65.
    void anyOtherNameGetsAColorFromItsBytes_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("hue");
        QTest::addColumn<QColor>("color");
        QTest::newRow("nothing") << QString() << 341 << QColor(166, 58, 92);
        QTest::newRow("one letter") << u"A"_s << 158 << QColor(58, 166, 126);
        QTest::newRow("a blank after a brand") << u"Base "_s << 8 << QColor(166, 72, 58);
        QTest::newRow("a word") << u"Blast"_s << 59 << QColor(166, 164, 58);
        QTest::newRow("a mark's name in part") << u"zkSync"_s << 111 << QColor(74, 166, 58);
        QTest::newRow("two bytes, above 127 each") << u"ärger"_s << 180 << QColor(58, 166, 166);
        QTest::newRow("three bytes") << u"龍"_s << 345 << QColor(166, 58, 85);
        QTest::newRow("four bytes") << u"🦄"_s << 102 << QColor(90, 166, 58);
        QTest::newRow("past 63 bits") << u"Arbitrum Nova"_s << 239 << QColor(58, 60, 166);
        QTest::newRow("past 64 bits") << u"Polygon zkEVM Cardona"_s << 154 << QColor(58, 166, 119);
    }

    void anyOtherNameGetsAColorFromItsBytes() {
        QFETCH(QString, name);
        QFETCH(int, hue);
        QFETCH(QColor, color);
        const ChainIcon::Info info = ChainIcon::info(name);
        QCOMPARE(info.key, QString());
        QCOMPARE(qRound(info.color.hsvHueF() * 360), hue);
        QCOMPARE(info.color.rgba(), color.rgba());
    }

    void aMarkIsFoundByItsExactNameAlone() {
        QCOMPARE(ChainMarks::byName().size(), 6);
        QCOMPARE(ChainMarksMono::byName().size(), 10);
        for (const QString& other : {u"linea"_s, u"LINEA"_s, u"Linea "_s, u"zkSync"_s, u"Robinhood"_s, QString()}) {
            QVERIFY(!ChainMarks::byName().contains(other));
            QVERIFY(!ChainMarksMono::byName().contains(other));
        }
        QVERIFY(icon(u"Linea"_s, 24) != icon(u"LINEA"_s, 24));
    }

    void aBrandHasAnEmblemInOneColorButNoColoredMark_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"Ethereum", "Arbitrum", "Optimism", "Base"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void aBrandHasAnEmblemInOneColorButNoColoredMark() {
        QFETCH(QString, name);
        QVERIFY(ChainMarksMono::byName().contains(name));
        QVERIFY(!ChainMarks::byName().contains(name));
        QVERIFY(!ChainIcon::info(name).key.isEmpty());
        QCOMPARE(icon(name, 24), icon(name.toUpper(), 24));
    }

    void aMarksTileHasItsBackground_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("Robinhood Chain") << u"Robinhood Chain"_s << 0xFFCCFF00U;
        QTest::newRow("zkSync Era") << u"zkSync Era"_s << 0xFF000000U;
        QTest::newRow("Unichain") << u"Unichain"_s << 0xFFF50DB4U;
        QTest::newRow("Scroll") << u"Scroll"_s << 0xFF101010U;
        QTest::newRow("Linea") << u"Linea"_s << 0xFF000000U;
        QTest::newRow("Starknet") << u"Starknet"_s << 0xFF0C0C4FU;
        QTest::newRow("Base") << u"Base"_s << 0xFF0052FFU;
        QTest::newRow("Arbitrum Nova") << u"Arbitrum Nova"_s << QColor(58, 60, 166).rgba();
    }

    void aMarksTileHasItsBackground() {
        QFETCH(QString, name);
        QFETCH(QRgb, background);
        QCOMPARE(icon(name, 96).pixel(48, 2), background);
    }

    // Of 100 pixels the corner's radius is 29: its circle leaves the diagonal at 8.5, and column 20 at 1.3.
    void aTilesCornersAreRoundedBy29Hundredths() {
        const QImage image = icon(QString(), 100);
        QCOMPARE(qAlpha(image.pixel(7, 7)), 0);
        QCOMPARE(qAlpha(image.pixel(9, 9)), 255);
        QCOMPARE(qAlpha(image.pixel(20, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(20, 2)), 255);
        QCOMPARE(qAlpha(image.pixel(30, 0)), 255);
        QCOMPARE(qAlpha(image.pixel(92, 92)), 0);
        QCOMPARE(qAlpha(image.pixel(90, 90)), 255);
    }

    void whatLiesInsideAShapeGoesByItsRule() {
        const auto mark = [](bool evenOdd) {
            return drawn(24, [evenOdd](QPainter& painter) {
                ChainIcon::paint(painter, QRectF(0, 0, 24, 24), nestedSquares(evenOdd));
            });
        };
        QCOMPARE(mark(true).pixel(6, 6), 0xFFFFFFFFU);
        QCOMPARE(mark(true).pixel(12, 12), 0xFF102030U);
        QCOMPARE(mark(false).pixel(6, 6), 0xFFFFFFFFU);
        QCOMPARE(mark(false).pixel(12, 12), 0xFFFFFFFFU);
    }

    void anEmptyNameIsAPlainTile() {
        const QImage plain = icon(QString(), 24);
        QCOMPARE(countPixels(plain, [](QRgb pixel) { return pixel == qRgb(166, 58, 92); }), countOpaque(plain));
    }

    void aNameWithoutArtworkShowsItsLetterInWhite() {
        const QImage image = icon(u"blast"_s, 48);
        QVERIFY(countPixels(image, [](QRgb pixel) { return pixel == 0xFFFFFFFFU; }) > 48);
        QCOMPARE(image.pixel(4, 24), ChainIcon::info(u"blast"_s).color.rgba());
    }

    void anEmblemIsDrawnInWhiteUponTheGivenColor() {
        const auto emblem = [](const QString& key, const QString& name, const QColor& background) {
            return drawn(24, [&](QPainter& painter) { ChainIcon::draw(key, name, painter, background); });
        };
        QCOMPARE(emblem(u"base"_s, QString(), Qt::black).pixel(12, 6), 0xFFFFFFFFU);
        QCOMPARE(emblem(QString(), u"Linea"_s, Qt::black).pixel(6, 12), 0xFFFFFFFFU);
        // Right of its edge the stone is 0.78 white, the rest the tile's colour.
        QCOMPARE(emblem(u"ethereum"_s, QString(), Qt::black).pixel(13, 8), qRgb(199, 199, 199));
        QCOMPARE(emblem(u"ethereum"_s, QString(), Qt::red).pixel(13, 8), qRgb(255, 199, 199));
    }

    void aMarkLiesInTheMiddleOfItsRectangleAndNowhereElse() {
        const QStringList names = ChainMarksMono::byName().keys() + QStringList{u"Blast"_s};
        for (const QString& name : names) {
            const QImage wide =
                drawn(60, [&name](QPainter& painter) { ChainIcon::paint(painter, QRectF(10, 20, 40, 24), name); });
            QCOMPARE(wide.copy(18, 20, 24, 24), icon(name, 24));
            QCOMPARE(countOpaque(wide), countOpaque(icon(name, 24)));
        }
    }

    void aMarkGrowsWithItsSquare() {
        for (const QString& name : ChainMarksMono::byName().keys()) {
            const QImage large = icon(name, 120).scaled(24, 24, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            QVERIFY2(visibleDifference(large, icon(name, 24)) < 8, qPrintable(name));
        }
    }

    void aSquareThatIsNoneDrawsNothing() {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (const double side : {0.0, -24.0, nan, infinity}) {
            const QImage image = drawn(24, [side](QPainter& painter) {
                ChainIcon::paint(painter, QRectF(0, 0, side, side), u"Base"_s);
                ChainIcon::paint(painter, QRectF(0, 0, side, side), u"Linea"_s);
            });
            QVERIFY(isBlank(image));
        }
    }

    void paintingLeavesThePainterAsItWas() {
        const QImage image = drawn(24, [](QPainter& painter) {
            ChainIcon::paint(painter, QRectF(4, 4, 8, 8), u"Scroll"_s);
            QCOMPARE(painter.transform(), QTransform());
            QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
        });
        QVERIFY(!isBlank(image));
    }

    void theWidgetRepaintsForAnotherNameAlone() {
        ChainIcon widget(u"Base"_s, 24);
        QCOMPARE(widget.sizeHint(), QSize(24, 24));
        widget.resize(24, 24);
        PaintCounter counter;
        widget.installEventFilter(&counter);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        QTRY_VERIFY(counter.paints > 0);
        QCoreApplication::processEvents();
        const int before = counter.paints;
        widget.setName(u"Base"_s);
        QCoreApplication::processEvents();
        QCOMPARE(counter.paints, before);
        widget.setName(u"Linea"_s);
        QTRY_COMPARE(counter.paints, before + 1);
    }

private:
    static int countOpaque(const QImage& image) {
        return countPixels(image, [](QRgb pixel) { return qAlpha(pixel) == 255; });
    }
};

QTEST_MAIN(ChainIconTest)
#include "ChainIconTest.moc"

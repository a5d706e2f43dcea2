#include "Views/MenuBarBadgeIcon.h"

#include "Design/DesignSystem.h"
#include "TorvaneKitTests/Design/Drawn.h"

#include <QTest>

#include <limits>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

MenuBarBadgeIcon ethereum(bool colorIcon, std::optional<QColor> dot) {
    return {u"Ethereum"_s, 15, dot, 4.5, colorIcon};
}

/// The pixel at a point, of the picture at three pixels for one.
QColor at(const QImage& image, QPointF point) {
    return image.pixelColor((point * 3).toPoint());
}

bool isBlack(const QImage& image) {
    return countPixels(image, [](QRgb pixel) { return (pixel & 0xffffff) != 0; }) == 0;
}

} // namespace

class MenuBarBadgeIconTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePartsLieWhereTheyBelong() {
        const MenuBarBadgeIcon icon = ethereum(true, Palette::pos);
        QCOMPARE(icon.side(), 18.0);
        QCOMPARE(icon.mark(), QRectF(1.5, 1.5, 15, 15));
        QCOMPARE(icon.dot(), QRectF(12, 12, 4.5, 4.5));
        QCOMPARE(icon.dot().bottomRight(), icon.mark().bottomRight());
        QCOMPARE(icon.cutOut().size(), QSizeF(7.1, 7.1));
        QCOMPARE(icon.cutOut().center(), icon.dot().center());
    }

    void aColoredDotStandsFreeInTheTilesCorner() {
        const QImage plain = ethereum(true, {}).rasterized(54);
        const QImage dotted = ethereum(true, Palette::pos).rasterized(54);
        const QPointF centre(14.25, 14.25);
        QCOMPARE(at(dotted, centre), Palette::pos);
        QVERIFY(at(plain, centre) != Palette::pos);
        const double ring = (4.5 / 2 + 7.1 / 2) / 2; // In the middle of the ring, on each side.
        for (const QPointF& away : {QPointF(-ring, 0), QPointF(0, -ring), QPointF(ring, 0), QPointF(0, ring)})
            QCOMPARE(at(dotted, centre + away).alpha(), 0);
        QVERIFY(at(plain, centre - QPointF(ring, 0)).alpha() == 255);
        // The mark is as it was outside the ring.
        QCOMPARE(at(dotted, {4, 4}), at(plain, {4, 4}));
        QCOMPARE(at(dotted, {9, 12}), at(plain, {9, 12}));
        QCOMPARE(at(dotted, {14, 9}), at(plain, {14, 9}));
    }

    void theDotOfATemplateIsBlack() {
        for (const QColor& dot : {Palette::pos, Palette::neg}) {
            const QImage image = ethereum(false, dot).rasterized(54);
            QVERIFY(isBlack(image));
            QCOMPARE(at(image, {14.25, 14.25}), QColor(Qt::black));
            QCOMPARE(image, ethereum(false, Palette::warn).rasterized(54));
        }
        QVERIFY(isBlack(ethereum(false, {}).rasterized(54)));
        QVERIFY(!isBlack(ethereum(true, {}).rasterized(54)));
    }

    void aTemplatesShapeIsItsPicture() {
        for (const std::optional<QColor>& dot : {std::optional<QColor>(), std::optional<QColor>(Palette::pos)}) {
            const MenuBarBadgeIcon icon = ethereum(false, dot);
            const QImage filled = drawn(54, [&icon](QPainter& painter) {
                painter.setRenderHint(QPainter::Antialiasing);
                painter.scale(3, 3);
                painter.fillPath(icon.shape(), Qt::black);
            });
            QCOMPARE(visibleDifference(filled, icon.rasterized(54)), 0);
        }
        QVERIFY((MenuBarBadgeIcon{u"Ethereum"_s, notANumber, {}, 4.5, false}.shape().isEmpty()));
        QVERIFY((MenuBarBadgeIcon{u"Ethereum"_s, -15, Palette::pos, 4.5, false}.shape().isEmpty()));
    }

    void thePaddingIsFree() {
        for (const bool colored : {false, true}) {
            const QImage image = MenuBarBadgeIcon{u"Base"_s, 15, {}, 4.5, colored}.rasterized(54);
            for (int i = 0; i < 54; ++i) {
                for (const int edge : {0, 1, 2, 3, 50, 51, 52, 53})
                    QVERIFY(qAlpha(image.pixel(i, edge)) == 0 && qAlpha(image.pixel(edge, i)) == 0);
            }
        }
    }

    void everyNetworkHasAMark() {
        for (const QString& name : {u"Ethereum"_s, u"Scroll"_s, u"Some Chain"_s, u"Zürich"_s, u" "_s}) {
            for (const bool colored : {false, true})
                QVERIFY(!isBlank(MenuBarBadgeIcon{name, 15, {}, 4.5, colored}.rasterized(54)));
        }
    }

    void aColorThatLetsLightThroughStaysSo() {
        const QImage image = ethereum(true, QColor::fromRgbF(1, 0, 0, 0.5F)).rasterized(54);
        const QColor dot = at(image, {14.25, 14.25});
        QVERIFY(std::abs(dot.alpha() - 128) <= 1);
        QCOMPARE(dot.green(), 0);
    }

    void itIsDrawnInAnyNumberOfPixels() {
        for (const int pixels : {1, 16, 22, 54, 66, 4096}) {
            const QImage image = ethereum(true, Palette::pos).rasterized(pixels);
            QCOMPARE(image.size(), QSize(pixels, pixels));
            QVERIFY(!isBlank(image));
        }
        for (const int pixels : {0, -1, 4097, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
            QVERIFY(ethereum(true, Palette::pos).rasterized(pixels).isNull());
    }

    void whatHasNoSizeHasNoPicture() {
        for (const double size : {0.0, -15.0, notANumber, infinity, -infinity})
            QVERIFY((MenuBarBadgeIcon{u"Base"_s, size, Palette::pos, 4.5, true}.rasterized(54).isNull()));
    }

    void aDotWithoutASizeIsNone() {
        const QImage plain = ethereum(true, {}).rasterized(54);
        for (const double size : {0.0, -1.0, notANumber, infinity, -infinity})
            QCOMPARE((MenuBarBadgeIcon{u"Ethereum"_s, 15, Palette::pos, size, true}.rasterized(54)), plain);
    }

    void aHugeDotCoversTheMark() {
        const QImage image = MenuBarBadgeIcon{u"Ethereum"_s, 15, Palette::pos, 1e300, true}.rasterized(54);
        QCOMPARE(image.size(), QSize(54, 54));
    }
};

QTEST_MAIN(MenuBarBadgeIconTest)
#include "MenuBarBadgeIconTest.moc"

#include "Views/MenuBarRasterCache.h"

#include "Design/DesignSystem.h"

#include <QTest>

#include <limits>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

BadgeRaster picture(const QColor& color) {
    QImage image(2, 2, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return {image, true};
}

} // namespace

class MenuBarRasterCacheTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MenuBarRasterCache::badgeIcons().clear(); }

    void aLookIsDrawnOnce() {
        int drawn = 0;
        const auto draw = [&drawn] {
            ++drawn;
            return picture(Qt::red);
        };
        const BadgeRaster first = MenuBarRasterCache::badgeIcon(u"m_Base_15000_off"_s, draw);
        const BadgeRaster second = MenuBarRasterCache::badgeIcon(u"m_Base_15000_off"_s, draw);
        QCOMPARE(drawn, 1);
        QCOMPARE(second.image.cacheKey(), first.image.cacheKey()); // The very same pixels.
        QVERIFY(second.isTemplate);
        MenuBarRasterCache::badgeIcon(u"c_Base_15000_off"_s, draw);
        QCOMPARE(drawn, 2);
    }

    void thePicturesCanBeReadAndWritten() {
        QVERIFY(MenuBarRasterCache::badgeIcons().isEmpty());
        MenuBarRasterCache::badgeIcons()[u"m_Base_15000_off"_s] = picture(Qt::blue);
        const auto fail = [] { return picture(Qt::red); };
        const QImage image = MenuBarRasterCache::badgeIcon(u"m_Base_15000_off"_s, fail).image;
        QCOMPARE(image.pixelColor(0, 0), QColor(Qt::blue));
    }

    void nothingIsEverDropped() {
        for (int i = 0; i < 1000; ++i)
            MenuBarRasterCache::badgeIcon(u"m_Network %1_15000_off"_s.arg(i), [] { return picture(Qt::red); });
        QCOMPARE(MenuBarRasterCache::badgeIcons().size(), 1000);
    }

    void whatCouldNotBeDrawnIsTriedAgain() {
        QVERIFY(MenuBarRasterCache::badgeIcon(u"key"_s, [] { return BadgeRaster(); }).image.isNull());
        QVERIFY(!MenuBarRasterCache::badgeIcon(u"key"_s, [] { return picture(Qt::red); }).image.isNull());
    }

    void drawingMayDrawAnotherLook() {
        const auto inner = [] { return picture(Qt::red); };
        const auto outer = [inner] { return MenuBarRasterCache::badgeIcon(u"inner"_s, inner); };
        MenuBarRasterCache::badgeIcon(u"outer"_s, outer);
        QCOMPARE(MenuBarRasterCache::badgeIcons().size(), 2);
    }

    void pixelSizesHaveKeysOfTheirOwn() {
        QCOMPARE(MenuBarRasterCache::pixelKey(u"m_Base_15000_off"_s, 22), u"m_Base_15000_off_22px"_s);
        QCOMPARE(MenuBarRasterCache::pixelKey(u"%1"_s, 22), u"%1_22px"_s);
    }

    void colorsAreWrittenAsComponents_data() {
        QTest::addColumn<QColor>("color");
        QTest::addColumn<double>("size");
        QTest::addColumn<QString>("key");
        QTest::newRow("pos") << Palette::pos << 4.5 << u"0.369_0.447_0.341_1.000_4500"_s;
        QTest::newRow("warn") << Palette::warn << 4.5 << u"0.604_0.482_0.263_1.000_4500"_s;
        QTest::newRow("neg") << Palette::neg << 4.5 << u"0.592_0.341_0.294_1.000_4500"_s;
        QTest::newRow("black") << QColor(Qt::black) << 1.0 << u"0.000_0.000_0.000_1.000_1000"_s;
        QTest::newRow("half") << QColor::fromRgbF(1, 1, 1, 0.5F) << 4.5 << u"1.000_1.000_1.000_0.500_4500"_s;
        QTest::newRow("by hue") << QColor::fromHsvF(0, 1, 1) << 4.5 << u"1.000_0.000_0.000_1.000_4500"_s;
        QTest::newRow("in print") << QColor::fromCmykF(1, 0, 0, 0) << 4.5 << u"0.000_1.000_1.000_1.000_4500"_s;
        QTest::newRow("no color") << QColor() << 4.5 << u"0.627_0.627_0.643_1.000_4500"_s;
        QTest::newRow("size rounded down") << QColor(Qt::black) << 4.5004 << u"0.000_0.000_0.000_1.000_4500"_s;
        QTest::newRow("size rounded up") << QColor(Qt::black) << 4.5006 << u"0.000_0.000_0.000_1.000_4501"_s;
        QTest::newRow("size 0") << QColor(Qt::black) << 0.0 << u"0.000_0.000_0.000_1.000_0"_s;
        QTest::newRow("negative size") << QColor(Qt::black) << -4.5 << u"0.000_0.000_0.000_1.000_-4500"_s;
        QTest::newRow("size not a number") << QColor(Qt::black) << notANumber << u"0.000_0.000_0.000_1.000_nan"_s;
        QTest::newRow("infinite size") << QColor(Qt::black) << infinity << u"0.000_0.000_0.000_1.000_inf"_s;
    }

    void colorsAreWrittenAsComponents() {
        QFETCH(QColor, color);
        QFETCH(double, size);
        QFETCH(QString, key);
        QCOMPARE(MenuBarRasterCache::colorKey(color, size), key);
    }

    void theLargestSizeHasAKey() {
        const QString key = MenuBarRasterCache::colorKey(Qt::black, std::numeric_limits<double>::max() / 1000);
        QCOMPARE(key.size(), QStringLiteral("0.000_0.000_0.000_1.000_").size() + 309);
    }

    void aColorThatFollowsTheAppearanceHasAKeyInEach() {
        setCurrentAppearance(Appearance::light);
        const QString light = MenuBarRasterCache::colorKey(Palette::ink3, 4.5);
        setCurrentAppearance(Appearance::dark);
        const QString dark = MenuBarRasterCache::colorKey(Palette::ink3, 4.5);
        setCurrentAppearance(Appearance::light);
        QCOMPARE(light, u"0.541_0.537_0.518_1.000_4500"_s);
        QCOMPARE(dark, u"0.478_0.475_0.455_1.000_4500"_s);
    }
};

QTEST_APPLESS_MAIN(MenuBarRasterCacheTest)
#include "MenuBarRasterCacheTest.moc"

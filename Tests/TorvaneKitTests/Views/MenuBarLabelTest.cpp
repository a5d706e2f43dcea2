#include "Views/MenuBarLabel.h"

#include "Design/DesignSystem.h"
#include "Support/TemporaryHome.h"

#include <QFontInfo>
#include <QTest>

#include <limits>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

L2Entry network(const QString& name, const QString& status) {
    L2Entry entry{};
    entry.name = name;
    entry.tag = name.left(3).toUpper();
    entry.status = status;
    entry.costGwei = 0.0123;
    entry.costUsd = 0.004;
    return entry;
}

Snapshot snapshot() {
    Snapshot result{};
    result.price.eth = 3000;
    result.gas = {
        .baseFee = 8, .low = 12.34, .avg = 20, .high = 99.5, .history = {}, .feeTransferUsd = {}, .feeSwapUsd = {}};
    result.l2 = {network(u"Base"_s, u"Normal"_s), network(u"Scroll"_s, u"Elevated"_s), network(u"Linea"_s, u"Low"_s),
                 network(u"Starknet"_s, u"normal"_s), network(u"Base"_s, u"Elevated"_s)};
    return result;
}

Snapshot withBaseFee(double gwei) {
    Snapshot result = snapshot();
    result.gas.baseFee = gwei;
    return result;
}

} // namespace

class MenuBarLabelTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        MenuBarRasterCache::badgeIcons().clear();
        m_settings.reset();
        m_defaults.reset();
        m_home = std::make_unique<TemporaryHome>();
        m_defaults =
            std::make_unique<UserDefaults>(m_home->filePath(u"preferences.json"_s), m_home->filePath(u"cache"_s));
        m_settings = std::make_unique<AppSettings>(*m_defaults);
    }

    void withoutASnapshotTheMarkStandsAlone() {
        m_settings->badgeChain = BadgeChain::l2(u"Base"_s);
        QVERIFY(!MenuBarLabel::badgeDotColor({}, *m_settings));
        QVERIFY(!MenuBarLabel::figureText({}, *m_settings));
        const MenuBarLabel::Body body = MenuBarLabel::body({}, *m_settings);
        QVERIFY(!body.figure);
        QVERIFY(!std::get<BadgeRaster>(*body.leading).image.isNull());
        QCOMPARE(MenuBarRasterCache::badgeIcons().keys(), QStringList(u"m_Base_15000_off"_s));
    }

    void theDotIsColoredByTheBaseFee_data() {
        QTest::addColumn<double>("baseFee");
        QTest::addColumn<QColor>("color");
        QTest::newRow("0") << 0.0 << Palette::pos;
        QTest::newRow("8") << 8.0 << Palette::pos;
        QTest::newRow("8.01") << 8.01 << Palette::warn;
        QTest::newRow("30") << 30.0 << Palette::warn;
        QTest::newRow("30.01") << 30.01 << Palette::neg;
        QTest::newRow("negative") << -1.0 << Palette::pos;
        QTest::newRow("infinite") << infinity << Palette::neg;
        QTest::newRow("not a number") << notANumber << Palette::neg;
    }

    void theDotIsColoredByTheBaseFee() {
        QFETCH(double, baseFee);
        QFETCH(QColor, color);
        QCOMPARE(MenuBarLabel::badgeStatusColor(withBaseFee(baseFee), BadgeChain::ethereum()), color);
        QCOMPARE(MenuBarLabel::badgeDotColor(withBaseFee(baseFee), *m_settings), color);
        // Whichever figure is shown.
        for (const BadgeSource source : allCases<BadgeSource>()) {
            m_settings->badgeSource = source;
            QCOMPARE(MenuBarLabel::badgeDotColor(withBaseFee(baseFee), *m_settings), color);
        }
    }

    void theDotIsColoredByTheNetworksStatus_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QColor>("color");
        QTest::newRow("normal") << u"Base"_s << Palette::warn; // The first of that name.
        QTest::newRow("elevated") << u"Scroll"_s << Palette::neg;
        QTest::newRow("low") << u"Linea"_s << Palette::pos;
        QTest::newRow("lower case") << u"Starknet"_s << QColor(Palette::ink3);
        QTest::newRow("not listed") << u"Optimism"_s << QColor(Palette::ink3);
        QTest::newRow("another case") << u"base"_s << QColor(Palette::ink3);
    }

    void theDotIsColoredByTheNetworksStatus() {
        QFETCH(QString, name);
        QFETCH(QColor, color);
        m_settings->badgeChain = BadgeChain::l2(name);
        QCOMPARE(MenuBarLabel::badgeStatusColor(snapshot(), m_settings->badgeChain), color);
        QCOMPARE(MenuBarLabel::badgeDotColor(snapshot(), *m_settings), color);
    }

    void aNetworkThatIsNotListedHasAGreyDotAndADash() {
        m_settings->badgeChain = BadgeChain::l2(u"Optimism"_s);
        QCOMPARE(MenuBarLabel::badgeDotColor(snapshot(), *m_settings), QColor(Palette::ink3));
        QCOMPARE(MenuBarLabel::figureText(snapshot(), *m_settings), u"—"_s);
    }

    void theDotCanBeSwitchedOff() {
        m_settings->menuDot = false;
        QVERIFY(!MenuBarLabel::badgeDotColor(snapshot(), *m_settings));
        (void)MenuBarLabel::body(snapshot(), *m_settings);
        QCOMPARE(MenuBarRasterCache::badgeIcons().keys(), QStringList(u"m_Ethereum_15000_off"_s));
    }

    void theFigureIsTheChosenOne() {
        QCOMPARE(MenuBarLabel::figureText(snapshot(), *m_settings), u"12.3"_s);
        m_settings->badgeSource = BadgeSource::baseFee;
        QCOMPARE(MenuBarLabel::figureText(snapshot(), *m_settings), u"8.0"_s);
        m_settings->denom = Denomination::usd;
        QCOMPARE(MenuBarLabel::figureText(snapshot(), *m_settings), u"$0.50"_s);
        m_settings->badgeChain = BadgeChain::l2(u"Base"_s);
        QCOMPARE(MenuBarLabel::figureText(snapshot(), *m_settings), u"<$0.01"_s);
        m_settings->denom = Denomination::gwei;
        QVERIFY(MenuBarLabel::figureText(snapshot(), *m_settings)->endsWith(u" gwei"_s));
    }

    void aNetworkWithoutTheFigureHasADash() {
        Snapshot bare = snapshot();
        bare.l2[0].costGwei.reset();
        m_settings->badgeChain = BadgeChain::l2(u"Base"_s);
        QCOMPARE(MenuBarLabel::figureText(bare, *m_settings), u"—"_s);
    }

    void theFigureCanBeSwitchedOff() {
        m_settings->menuNumber = false;
        const MenuBarLabel::Body body = MenuBarLabel::body(snapshot(), *m_settings);
        QVERIFY(!body.figure);
        QVERIFY(body.leading);
    }

    void theFigureIsMonospacedAndMedium() {
        QCOMPARE(MenuBarLabel::font().pixelSize(), 13);
        QCOMPARE(MenuBarLabel::font().weight(), QFont::Medium);
        QCOMPARE(MenuBarLabel::font(), Fonts::mono(13, QFont::Medium));
    }

    void keysSayAllThatALookDependsOn_data() {
        QTest::addColumn<bool>("colorIcon");
        QTest::addColumn<QString>("chain");
        QTest::addColumn<double>("size");
        QTest::addColumn<std::optional<QColor>>("dot");
        QTest::addColumn<QString>("key");
        const std::optional<QColor> pos(Palette::pos);
        const std::optional<QColor> none;
        QTest::newRow("colored") << true << u"Ethereum"_s << 15.0 << pos
                                 << u"c_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500"_s;
        QTest::newRow("template") << false << u"Ethereum"_s << 15.0 << pos
                                  << u"m_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500"_s;
        QTest::newRow("without a dot") << true << u"zkSync Era"_s << 15.0 << none << u"c_zkSync Era_15000_off"_s;
        QTest::newRow("signs in the name") << false << u"%1_é_off"_s << 15.0 << none << u"m_%1_é_off_15000_off"_s;
        QTest::newRow("no name") << false << QString() << 15.0 << none << u"m__15000_off"_s;
        QTest::newRow("half a point") << false << u"A"_s << 15.5 << none << u"m_A_15500_off"_s;
        QTest::newRow("size 0") << false << u"A"_s << 0.0 << none << u"m_A_0_off"_s;
        QTest::newRow("negative size") << false << u"A"_s << -15.0 << none << u"m_A_-15000_off"_s;
        QTest::newRow("size not a number") << false << u"A"_s << notANumber << none << u"m_A_nan_off"_s;
        QTest::newRow("infinite size") << false << u"A"_s << infinity << none << u"m_A_inf_off"_s;
        QTest::newRow("huge size") << false << u"A"_s << 1e15 << none << u"m_A_1000000000000000000_off"_s;
    }

    void keysSayAllThatALookDependsOn() {
        QFETCH(bool, colorIcon);
        QFETCH(QString, chain);
        QFETCH(double, size);
        QFETCH(std::optional<QColor>, dot);
        QFETCH(QString, key);
        QCOMPARE(MenuBarLabel::cacheKey(colorIcon, chain, size, dot, 4.5), key);
    }

    void eachLookIsDrawnOnce() {
        m_settings->colorIcon = true;
        const qint64 colored = leadingPicture().image.cacheKey();
        QCOMPARE(leadingPicture().image.cacheKey(), colored);
        m_settings->colorIcon = false;
        QVERIFY(leadingPicture().image.cacheKey() != colored);
        m_settings->colorIcon = true;
        QCOMPARE(leadingPicture().image.cacheKey(), colored);
        QStringList keys = MenuBarRasterCache::badgeIcons().keys();
        keys.sort();
        QCOMPARE(keys, QStringList({u"c_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500"_s,
                                    u"m_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500"_s}));
    }

    void whatDoesNotShowDrawsNothingAnew() {
        const qint64 drawn = leadingPicture().image.cacheKey();
        m_settings->denom = Denomination::usd;
        m_settings->badgeSource = BadgeSource::high;
        m_settings->menuNumber = false;
        QCOMPARE(leadingPicture(withBaseFee(3)).image.cacheKey(), drawn);
        QVERIFY(leadingPicture(withBaseFee(9)).image.cacheKey() != drawn);
    }

    void aTemplateIsWhatHasNoColors() {
        const BadgeRaster plain = leadingPicture();
        QVERIFY(plain.isTemplate);
        m_settings->colorIcon = true;
        QVERIFY(!leadingPicture().isTemplate);
    }

    void thePictureHasThreePixelsForAPoint() {
        const QImage image = leadingPicture().image;
        QCOMPARE(image.size(), QSize(54, 54));
        QCOMPARE(image, MenuBarLabel::badgeIcon(snapshot(), *m_settings).rasterized(54));
    }

    void otherNumbersOfPixelsAreDrawnOnceToo() {
        const MenuBarBadgeIcon icon = MenuBarLabel::badgeIcon(snapshot(), *m_settings);
        const BadgeRaster small = MenuBarLabel::badgeRaster(icon, 22);
        QCOMPARE(small.image.size(), QSize(22, 22));
        QVERIFY(small.isTemplate);
        QCOMPARE(MenuBarLabel::badgeRaster(icon, 22).image.cacheKey(), small.image.cacheKey());
        QCOMPARE(MenuBarRasterCache::badgeIcons().keys(),
                 QStringList(u"m_Ethereum_15000_on_0.369_0.447_0.341_1.000_4500_22px"_s));
        // The usual number has the usual key.
        QCOMPARE(MenuBarLabel::badgeRaster(icon, 54).image.cacheKey(),
                 MenuBarLabel::badgeRaster(icon).image.cacheKey());
        QCOMPARE(MenuBarRasterCache::badgeIcons().size(), 2);
    }

    void whatCannotBeDrawnIsNotKept() {
        for (const double size : {0.0, -15.0, notANumber, infinity, 1e300, 1e5}) {
            const MenuBarBadgeIcon icon{u"Base"_s, size, {}, 4.5, false};
            QVERIFY(MenuBarLabel::badgeRaster(icon).image.isNull());
        }
        const MenuBarBadgeIcon icon = MenuBarLabel::badgeIcon({}, *m_settings);
        QVERIFY(MenuBarLabel::badgeRaster(icon, 0).image.isNull());
        QVERIFY(MenuBarRasterCache::badgeIcons().isEmpty());
    }

    void aTextStandsInForAPicture() {
        const BadgeChain base = BadgeChain::l2(u"Base"_s);
        QCOMPARE(std::get<QString>(*MenuBarLabel::leading({}, base, snapshot().l2)), u"BAS"_s);
        QVERIFY(!MenuBarLabel::leading({}, base, {}));
        QVERIFY(!MenuBarLabel::leading({}, BadgeChain::ethereum(), snapshot().l2));
        const BadgeRaster raster = leadingPicture();
        const MenuBarLabel::Leading leading = *MenuBarLabel::leading(raster, base, snapshot().l2);
        QCOMPARE(std::get<BadgeRaster>(leading).image, raster.image);
    }

private:
    BadgeRaster leadingPicture(const Snapshot& of = snapshot()) {
        return std::get<BadgeRaster>(*MenuBarLabel::badgeLeading(of, *m_settings));
    }

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
};

QTEST_MAIN(MenuBarLabelTest)
#include "MenuBarLabelTest.moc"

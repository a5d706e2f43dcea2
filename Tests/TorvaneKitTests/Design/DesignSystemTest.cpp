#include "Design/DesignSystem.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(DynamicColor)

class DesignSystemTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }
    void aColorHasAValueForEachAppearance_data();
    void aColorHasAValueForEachAppearance();
    void aColorIsResolvedWhenItIsRead();
    void anAppearanceThatIsNeitherIsLight();
    void statusColorsAreTheSameInBoth();
    void accentIsInkAndItsTextIsSurface();
    void gasLevelsHaveTheStatusColors();
    void statusWordsMatchExactly_data();
    void statusWordsMatchExactly();
    void fontsHaveTheSystemFacesAndTheirWeight();
    void aSizeIsTheNearestWholeOne();
    void figuresOfMonospacedTextStandInColumns();
    void aFixedFaceThatIsNotFixedIsReplaced();
};

void DesignSystemTest::aColorHasAValueForEachAppearance_data() {
    QTest::addColumn<DynamicColor>("color");
    QTest::addColumn<QString>("dark");
    QTest::addColumn<QString>("light");
    const auto row = [](const char* name, const DynamicColor& color, const QString& dark, const QString& light) {
        QTest::newRow(name) << color << dark << light;
    };
    row("ink", Palette::ink, u"#ffecebe7"_s, u"#ff1b1b1a"_s);
    row("ink2", Palette::ink2, u"#ffa7a6a0"_s, u"#ff5c5b57"_s);
    row("ink3", Palette::ink3, u"#ff7a7974"_s, u"#ff8a8984"_s);
    row("ink4", Palette::ink4, u"#ff54534f"_s, u"#ffb3b2ac"_s);
    row("paper", Palette::paper, u"#ff161614"_s, u"#fff6f5f3"_s);
    row("surface", Palette::surface, u"#ff1e1e1c"_s, u"#ffffffff"_s);
    row("surface2", Palette::surface2, u"#ff262624"_s, u"#ffefeeeb"_s);
    row("surface3", Palette::surface3, u"#ff2f2f2c"_s, u"#ffe7e5e1"_s);
    row("line", Palette::line, u"#ff2c2c29"_s, u"#ffe4e2dd"_s);
    row("line2", Palette::line2, u"#ff3a3a36"_s, u"#ffd5d3cd"_s);
    // Opacities in 255ths, rounded: 0.55 is 140, 0.50 is 128, 0.06 is 15, 0.16 is 41, 0.85 is 217.
    row("glassScrim", Palette::glassScrim, u"#8c1e1e1c"_s, u"#80ffffff"_s);
    row("glassFill", Palette::glassFill, u"#0fffffff"_s, u"#8cffffff"_s);
    row("glassStroke", Palette::glassStroke, u"#29ffffff"_s, u"#d9ffffff"_s);
}

void DesignSystemTest::aColorHasAValueForEachAppearance() {
    QFETCH(DynamicColor, color);
    QTEST(color.in(Appearance::dark).name(QColor::HexArgb), "dark");
    QTEST(color.in(Appearance::light).name(QColor::HexArgb), "light");
}

void DesignSystemTest::aColorIsResolvedWhenItIsRead() {
    QCOMPARE(currentAppearance(), Appearance::light);
    QCOMPARE(QColor(Palette::ink).name(), u"#1b1b1a"_s);
    setCurrentAppearance(Appearance::dark);
    QCOMPARE(QColor(Palette::ink).name(), u"#ecebe7"_s);
}

void DesignSystemTest::anAppearanceThatIsNeitherIsLight() {
    QCOMPARE(Palette::ink.in(static_cast<Appearance>(2)), Palette::ink.in(Appearance::light));
}

void DesignSystemTest::statusColorsAreTheSameInBoth() {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        setCurrentAppearance(appearance);
        QCOMPARE(Palette::pos, QColor(94, 114, 87));
        QCOMPARE(Palette::warn, QColor(154, 123, 67));
        QCOMPARE(Palette::neg, QColor(151, 87, 75));
    }
}

void DesignSystemTest::accentIsInkAndItsTextIsSurface() {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        setCurrentAppearance(appearance);
        QCOMPARE(QColor(Palette::accent), QColor(Palette::ink));
        QCOMPARE(QColor(Palette::accentInk), QColor(Palette::surface));
    }
    QCOMPARE(&Palette::accent, &Palette::ink);
    QCOMPARE(&Palette::accentInk, &Palette::surface);
}

void DesignSystemTest::gasLevelsHaveTheStatusColors() {
    QCOMPARE(color(GasLevel::low), Palette::pos);
    QCOMPARE(color(GasLevel::normal), Palette::warn);
    QCOMPARE(color(GasLevel::busy), Palette::neg);
}

void DesignSystemTest::statusWordsMatchExactly_data() {
    QTest::addColumn<QString>("status");
    QTest::addColumn<QColor>("expected");
    const QColor other = Palette::ink3;
    QTest::newRow("low") << u"Low"_s << Palette::pos;
    QTest::newRow("normal") << u"Normal"_s << Palette::warn;
    QTest::newRow("elevated") << u"Elevated"_s << Palette::neg;
    QTest::newRow("unavailable") << u"Unavailable"_s << other;
    QTest::newRow("another case") << u"low"_s << other;
    QTest::newRow("another word") << u"Busy"_s << other;
    QTest::newRow("a blank behind") << u"Low "_s << other;
    QTest::newRow("empty") << QString() << other;
}

void DesignSystemTest::statusWordsMatchExactly() {
    QFETCH(QString, status);
    QTEST(l2StatusColor(status), "expected");
}

void DesignSystemTest::fontsHaveTheSystemFacesAndTheirWeight() {
    const QFont sans = Fonts::sans(13, QFont::DemiBold);
    QCOMPARE(sans.families(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).families());
    QCOMPARE(sans.pixelSize(), 13);
    QCOMPARE(sans.weight(), QFont::DemiBold);

    const QFont mono = Fonts::mono(24, QFont::Medium);
    QVERIFY(QFontInfo(mono).fixedPitch());
    QCOMPARE(mono.pixelSize(), 24);
    QCOMPARE(mono.weight(), QFont::Medium);

    QCOMPARE(Fonts::label(), Fonts::mono(10.5, QFont::Medium));
}

void DesignSystemTest::aSizeIsTheNearestWholeOne() {
    QCOMPARE(Fonts::sans(10.4, QFont::Normal).pixelSize(), 10);
    QCOMPARE(Fonts::sans(10.5, QFont::Normal).pixelSize(), 11);
    QCOMPARE(Fonts::mono(0.2, QFont::Normal).pixelSize(), 1); // Qt refuses a size of none.

    // What Qt itself draws at 10.5, where it takes fractions: the same.
    QFont inPoints = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    inPoints.setPointSizeF(10.5 * 72 / QGuiApplication::primaryScreen()->logicalDotsPerInchY());
    const QString text = u"Mainnet 0123456789"_s;
    QCOMPARE(QFontMetricsF(inPoints).horizontalAdvance(text),
             QFontMetricsF(Fonts::sans(10.5, inPoints.weight())).horizontalAdvance(text));
}

void DesignSystemTest::figuresOfMonospacedTextStandInColumns() {
    for (const double size : {10.0, 10.5, 12.0, 18.0, 24.0}) {
        const QFontMetricsF metrics(Fonts::mono(size, QFont::Medium));
        const double width = metrics.horizontalAdvance(u'0');
        for (const QChar character : u"123456789.,$ WiM—"_s)
            QCOMPARE(metrics.horizontalAdvance(character), width);
    }
}

void DesignSystemTest::aFixedFaceThatIsNotFixedIsReplaced() {
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    QVERIFY(QFontInfo(fixed).fixedPitch());
    QCOMPARE(Fonts::monospaced(fixed).families(), fixed.families());

    const QFont proportional(u"DejaVu Sans"_s);
    QVERIFY(!QFontInfo(proportional).fixedPitch());
    QVERIFY(QFontInfo(Fonts::monospaced(proportional)).fixedPitch());
    QVERIFY(QFontInfo(Fonts::monospaced(QFont(u"No Such Face"_s))).fixedPitch());
}

QTEST_MAIN(DesignSystemTest)
#include "DesignSystemTest.moc"

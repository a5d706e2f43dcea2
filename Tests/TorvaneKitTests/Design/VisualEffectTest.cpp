#include "Design/VisualEffect.h"

#include "Design/DesignSystem.h"

#include <QImage>
#include <QTest>

using namespace torvane;
using X11::Compositing;

class VisualEffectTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }
    void theLookFollowsTheDesktop_data();
    void theLookFollowsTheDesktop();
    void aBackdropThatLetsThroughMakesItsWindowTranslucent();
    void changingItsFieldsChangesIt();
    void thePopoversGlassLiesOnPaperWithRoundCorners();
    void aWindowsMaterialIsPlainPaper();
    void theOutlineIsRoundToThePixel();
};

void VisualEffectTest::theLookFollowsTheDesktop_data() {
    QTest::addColumn<BlendingMode>("mode");
    QTest::addColumn<bool>("isX11");
    QTest::addColumn<Compositing>("compositing");
    QTest::addColumn<BackdropLook>("expected");
    const auto row = [](const char* name, BlendingMode mode, bool isX11, Compositing compositing, BackdropLook look) {
        QTest::newRow(name) << mode << isX11 << compositing << look;
    };
    row("compositor that blurs", BlendingMode::behindWindow, true, {true, true}, {false, true, false});
    row("compositor", BlendingMode::behindWindow, true, {true, false}, {true, false, false});
    row("no compositor", BlendingMode::behindWindow, true, {false, false}, {true, false, true});
    row("a compositor that is gone", BlendingMode::behindWindow, true, {false, true}, {true, false, true});
    row("not X11", BlendingMode::behindWindow, false, {}, {true, false, false});
    row("within the window", BlendingMode::withinWindow, true, {true, true}, {true, false, false});
    row("within the window, no compositor", BlendingMode::withinWindow, true, {}, {true, false, false});
}

void VisualEffectTest::theLookFollowsTheDesktop() {
    QFETCH(BlendingMode, mode);
    QFETCH(bool, isX11);
    QFETCH(Compositing, compositing);
    QTEST(backdropLook(mode, isX11, compositing), "expected");
}

void VisualEffectTest::aBackdropThatLetsThroughMakesItsWindowTranslucent() {
    QWidget see;
    const VisualEffect through(Material::popover, BlendingMode::behindWindow, &see);
    QVERIFY(see.testAttribute(Qt::WA_TranslucentBackground));
    QWidget opaque;
    const VisualEffect within(Material::window, BlendingMode::withinWindow, &opaque);
    QVERIFY(!opaque.testAttribute(Qt::WA_TranslucentBackground));
}

void VisualEffectTest::changingItsFieldsChangesIt() {
    QWidget window;
    VisualEffect effect(Material::window, BlendingMode::withinWindow, &window);
    effect.resize(60, 60);
    effect.setMaterial(Material::popover);
    effect.setBlendingMode(BlendingMode::behindWindow);
    QCOMPARE(effect.material(), Material::popover);
    QCOMPARE(effect.blendingMode(), BlendingMode::behindWindow);
    QVERIFY(window.testAttribute(Qt::WA_TranslucentBackground));
}

namespace {

/// The backdrop drawn at 2x upon nothing.
QImage picture(Material material) {
    QWidget window;
    VisualEffect effect(material, BlendingMode::behindWindow, &window);
    effect.resize(60, 60);
    QImage image(120, 120, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(2);
    image.fill(Qt::transparent);
    effect.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The colour of `over` upon an opaque one, in 255ths.
QColor blended(const QColor& over, const QColor& below) {
    const double opacity = over.alphaF();
    const auto mix = [&](int a, int b) { return qRound(a * opacity + b * (1 - opacity)); };
    return {mix(over.red(), below.red()), mix(over.green(), below.green()), mix(over.blue(), below.blue())};
}

bool areAlike(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) <= 1 && std::abs(a.green() - b.green()) <= 1 &&
           std::abs(a.blue() - b.blue()) <= 1 && a.alpha() == b.alpha();
}

} // namespace

void VisualEffectTest::thePopoversGlassLiesOnPaperWithRoundCorners() {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        setCurrentAppearance(appearance);
        const QImage image = picture(Material::popover);
        const QColor ground = blended(Palette::glassScrim, Palette::paper);
        QVERIFY(areAlike(image.pixelColor(60, 60), ground));
        for (const QPoint corner : {QPoint(0, 0), QPoint(119, 0), QPoint(0, 119), QPoint(119, 119)})
            QCOMPARE(image.pixelColor(corner).alpha(), 0);
        QVERIFY(areAlike(image.pixelColor(60, 0), Palette::line2)); // Sets it off from what lies behind.
        QVERIFY(areAlike(image.pixelColor(60, 2), blended(Palette::glassStroke, ground)));
    }
}

void VisualEffectTest::aWindowsMaterialIsPlainPaper() {
    const QImage image = picture(Material::window);
    for (const QPoint point : {QPoint(0, 0), QPoint(119, 119), QPoint(60, 60), QPoint(60, 0)})
        QCOMPARE(image.pixelColor(point), QColor(Palette::paper));
}

void VisualEffectTest::theOutlineIsRoundToThePixel() {
    const QRegion region = VisualEffect::outline({10, 20, 40, 30}, 4);
    QCOMPARE(region.boundingRect(), QRect(10, 20, 40, 30));
    // Of a circle of radius 4, the rows' ends are at 4 - sqrt(16 - 3.5²) = 2.06, 0.88, 0.29 and 0.03.
    const QList<int> free{2, 1, 0, 0};
    for (int row = 0; row < free.size(); ++row) {
        for (const int y : {20 + row, 49 - row}) {
            QVERIFY(region.contains(QPoint(10 + free[row], y)) && !region.contains(QPoint(9 + free[row], y)));
            QVERIFY(region.contains(QPoint(49 - free[row], y)) && !region.contains(QPoint(50 - free[row], y)));
        }
    }
    QCOMPARE(VisualEffect::outline({10, 20, 40, 30}, 0), QRegion(10, 20, 40, 30));
    QCOMPARE(VisualEffect::outline({0, 0, 2, 2}, 12).boundingRect(), QRect(0, 0, 2, 2));
    QVERIFY(VisualEffect::outline({}, 12).isEmpty());
}

QTEST_MAIN(VisualEffectTest)
#include "VisualEffectTest.moc"

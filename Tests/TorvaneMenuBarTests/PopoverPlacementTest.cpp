#include "PopoverPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

using namespace torvane;
using namespace PopoverPlacement;
using X11::Dock;

class PopoverPlacementTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theWindowLiesAtTheBadge_data();
    void theWindowLiesAtTheBadge();
    void itNeverLeavesTheArea();
    void anUnknownBadgeIsInTheCorner();
    void onlyThePointerMakesABadgeOfTheUsualSize();
    void docksNarrowTheArea_data();
    void docksNarrowTheArea();
    void serverPixelsBecomeDeviceIndependentOnes_data();
    void serverPixelsBecomeDeviceIndependentOnes();
    void theScreenIsTheBadgesOrTheNearest();
};

void PopoverPlacementTest::theWindowLiesAtTheBadge_data() {
    QTest::addColumn<QRect>("badge");
    QTest::addColumn<QRect>("area");
    QTest::addColumn<QSize>("wanted");
    QTest::addColumn<QRect>("expected");
    const QRect below(0, 33, 1280, 767); // a panel of 33 pixels on top of 1280 x 800
    const QRect above(0, 0, 1280, 768);
    const QRect rightOf(48, 0, 1232, 800);
    const QRect leftOf(0, 0, 1232, 800);
    const QSize size(344, 600);
    const auto row = [&](const char* name, QRect badge, QRect area, QSize wanted, QRect expected) {
        QTest::newRow(name) << badge << area << wanted << expected;
    };
    row("panel on top, in the middle of it", {600, 5, 22, 22}, below, size, {438, 33, 344, 600});
    row("panel on top, at its right end", {1197, 5, 22, 22}, below, size, {936, 33, 344, 600});
    row("panel on top, at its left end", {4, 5, 22, 22}, below, size, {0, 33, 344, 600});
    row("panel on top that keeps no space", {600, 5, 22, 22}, {0, 0, 1280, 800}, size, {438, 27, 344, 600});
    row("panel at the bottom", {600, 773, 22, 22}, above, size, {438, 168, 344, 600});
    row("panel at the bottom, at its right end", {1250, 773, 22, 22}, above, size, {936, 168, 344, 600});
    row("panel at the bottom that keeps no space", {600, 773, 22, 22}, {0, 0, 1280, 800}, size, {438, 173, 344, 600});
    row("panel at the left, upper half", {12, 100, 24, 24}, rightOf, size, {48, 100, 344, 600});
    row("panel at the left, lower half", {12, 700, 24, 24}, rightOf, size, {48, 124, 344, 600});
    row("panel at the left, lower end", {12, 776, 24, 24}, rightOf, size, {48, 200, 344, 600});
    row("panel at the right, upper half", {1244, 0, 24, 24}, leftOf, size, {888, 0, 344, 600});
    row("panel at the right, lower half", {1244, 720, 24, 24}, leftOf, size, {888, 144, 344, 600});
    row("the screen's very corner", {1279, 0, 1, 1}, below, size, {936, 33, 344, 600});
    row("taller than the area", {600, 5, 22, 22}, below, {344, 1200}, {438, 33, 344, 767});
    row("taller than the area, panel at the bottom", {600, 773, 22, 22}, above, {344, 1200}, {438, 0, 344, 768});
    row("wider than the area", {600, 5, 22, 22}, {0, 33, 300, 767}, size, {0, 33, 300, 600});
    row("a second screen to the right", {2900, 5, 22, 22}, {1280, 33, 1920, 1047}, size, {2738, 33, 344, 600});
    row("its right end", {3190, 5, 22, 22}, {1280, 33, 1920, 1047}, size, {2856, 33, 344, 600});
    row("a second screen to the left, below zero", {-100, 5, 22, 22}, {-1920, 33, 1920, 1047}, size,
        {-344, 33, 344, 600});
    row("a second screen above", {600, -20, 22, 20}, {0, -1080, 1280, 1060}, size, {438, -620, 344, 600});
}

void PopoverPlacementTest::theWindowLiesAtTheBadge() {
    QFETCH(QRect, badge);
    QFETCH(QRect, area);
    QFETCH(QSize, wanted);
    QTEST(place(wanted, badge, area), "expected");
}

void PopoverPlacementTest::itNeverLeavesTheArea() {
    const QRect area(-300, 33, 1280, 767);
    for (int x = -400; x < 1100; x += 37) {
        for (int y = -50; y < 900; y += 41) {
            for (const QSize wanted : {QSize(344, 100), QSize(344, 767), QSize(344, 2000), QSize(2000, 10)}) {
                const QRect found = place(wanted, {x, y, 24, 24}, area);
                QVERIFY(area.contains(found));
                QCOMPARE(found.size(), wanted.boundedTo(area.size()));
            }
        }
    }
}

void PopoverPlacementTest::anUnknownBadgeIsInTheCorner() {
    const QRect screen(1280, 0, 1280, 800);
    const auto placed = [&](const QRect& area) { return place({344, 600}, badgeInCorner(screen, area), area); };
    QCOMPARE(placed(screen), QRect(2216, 0, 344, 600));
    QCOMPARE(placed({1280, 33, 1280, 767}), QRect(2216, 33, 344, 600)); // a panel on top
    QCOMPARE(placed({1280, 0, 1280, 768}), QRect(2216, 168, 344, 600)); // one at the bottom
    QCOMPARE(placed({1280, 33, 1280, 735}), QRect(2216, 33, 344, 600)); // both
    QCOMPARE(placed({1328, 0, 1232, 800}), QRect(2216, 0, 344, 600));   // one at the left
}

void PopoverPlacementTest::onlyThePointerMakesABadgeOfTheUsualSize() {
    QCOMPARE(badgeAround({600, 16}), QRect(588, 4, 24, 24));
    QCOMPARE(badgeAround({0, 0}), QRect(-12, -12, 24, 24));
    QVERIFY(badgeAround({600, 16}).contains(600, 16));
}

void PopoverPlacementTest::docksNarrowTheArea_data() {
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QList<Dock>>("docks");
    QTest::addColumn<QRect>("expected");
    const QRect first(0, 0, 1280, 800);
    const QRect second(1280, 0, 1920, 1080);
    const auto row = [](const char* name, QRect screen, QRect available, const QList<Dock>& docks, QRect expected) {
        QTest::newRow(name) << screen << available << docks << expected;
    };
    row("none", first, first, {}, first);
    row("top", first, first, {{{0, 0, 1280, 32}, Qt::TopEdge}}, {0, 32, 1280, 768});
    row("bottom", first, first, {{{0, 768, 1280, 32}, Qt::BottomEdge}}, {0, 0, 1280, 768});
    row("left", first, first, {{{0, 0, 48, 800}, Qt::LeftEdge}}, {48, 0, 1232, 800});
    row("right", first, first, {{{1232, 0, 48, 800}, Qt::RightEdge}}, {0, 0, 1232, 800});
    row("two edges", first, first, {{{0, 0, 1280, 32}, Qt::TopEdge}, {{0, 32, 48, 768}, Qt::LeftEdge}},
        {48, 32, 1232, 768});
    row("known to the window manager already", first, {0, 33, 1280, 767}, {{{0, 0, 1280, 32}, Qt::TopEdge}},
        {0, 33, 1280, 767});
    row("upon the other screen", first, first, {{{1280, 0, 1920, 32}, Qt::TopEdge}}, first);
    row("between two screens, seen from the right one", second, second, {{{1280, 0, 48, 1080}, Qt::LeftEdge}},
        {1328, 0, 1872, 1080});
    row("between two screens, seen from the left one", first, first, {{{1232, 0, 48, 800}, Qt::RightEdge}},
        {0, 0, 1232, 800});
    row("on top of the lower of two screens", {0, 800, 1280, 800}, {0, 800, 1280, 800},
        {{{0, 800, 1280, 40}, Qt::TopEdge}}, {0, 840, 1280, 760});
    row("all of the screen, by mistake", first, first, {{{0, 0, 1280, 800}, Qt::TopEdge}}, first);
}

void PopoverPlacementTest::docksNarrowTheArea() {
    QFETCH(QRect, screen);
    QFETCH(QRect, available);
    QFETCH(QList<Dock>, docks);
    QTEST(workArea(screen, available, docks), "expected");
}

void PopoverPlacementTest::serverPixelsBecomeDeviceIndependentOnes_data() {
    QTest::addColumn<QRect>("server");
    QTest::addColumn<QPoint>("origin");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QRect>("expected");
    QTest::newRow("1") << QRect(10, 20, 30, 40) << QPoint(0, 0) << 1.0 << QRect(10, 20, 30, 40);
    QTest::newRow("2") << QRect(10, 20, 30, 40) << QPoint(0, 0) << 2.0 << QRect(5, 10, 15, 20);
    QTest::newRow("1.5, outwards") << QRect(0, 0, 1920, 50) << QPoint(0, 0) << 1.5 << QRect(0, 0, 1280, 34);
    QTest::newRow("2, a second screen") << QRect(2560, 0, 1920, 64) << QPoint(2560, 0) << 2.0
                                        << QRect(2560, 0, 960, 32);
    QTest::newRow("1.5, a second screen")
        << QRect(1290, 30, 15, 15) << QPoint(1275, 0) << 1.5 << QRect(1285, 20, 10, 10);
}

void PopoverPlacementTest::serverPixelsBecomeDeviceIndependentOnes() {
    QFETCH(QRect, server);
    QFETCH(QPoint, origin);
    QFETCH(double, scale);
    QTEST(fromServer(server, origin, scale), "expected");
}

void PopoverPlacementTest::theScreenIsTheBadgesOrTheNearest() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    QCOMPARE(&screenOf({}), screen);
    QCOMPARE(&screenOf({10, 10, 20, 20}), screen);
    QCOMPARE(&screenOf({-5000, 90000, 20, 20}), screen);
    QCOMPARE(workArea(*screen), screen->availableGeometry());
}

QTEST_MAIN(PopoverPlacementTest)
#include "PopoverPlacementTest.moc"

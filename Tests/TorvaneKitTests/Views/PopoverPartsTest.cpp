#include "Design/DesignSystem.h"
#include "Support/PaintCounter.h"
#include "Support/ToolTipReading.h"
#include "Views/ActionRow.h"
#include "Views/ChartView.h"
#include "Views/FigureLine.h"
#include "Views/L2Row.h"
#include "Views/LevelLine.h"
#include "Views/Rule.h"
#include "Views/TierCard.h"

#include <QClipboard>
#include <QSignalSpy>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// Large, so that strokes of letters have pixels of their colour alone.
constexpr int enlarged = 4;

QImage drawn(QWidget& widget, QSize size, double scale = enlarged) {
    widget.resize(size);
    QImage image(size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Palette::paper.in(currentAppearance()));
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// How many pixels of an enlarged picture have exactly this colour.
int pixelsOf(const QColor& color, const QImage& image, QRect within) {
    int count = 0;
    const QRect area(within.topLeft() * enlarged, within.size() * enlarged);
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

constexpr QSize cardSize(101, 73);
constexpr QSize rowSize(344, 34);

/// Where a row's status stands, beside its mark.
constexpr QRect statusPlace(48, 19, 100, 12);

QString nameOf(QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
}

} // namespace

class PopoverPartsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }

    void aTierIsMarkedInItsLevelsColour_data() {
        QTest::addColumn<GasLevel>("level");
        QTest::addColumn<QColor>("color");
        QTest::newRow("low") << GasLevel::low << Palette::pos;
        QTest::newRow("normal") << GasLevel::normal << Palette::warn;
        QTest::newRow("busy") << GasLevel::busy << Palette::neg;
    }

    void aTierIsMarkedInItsLevelsColour() {
        QFETCH(GasLevel, level);
        QFETCH(QColor, color);
        TierCard card;
        card.setTier(u"Average"_s, u"13.4"_s, u"$0.97"_s, level);
        for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
            setCurrentAppearance(appearance);
            QVERIFY(pixelsOf(color, drawn(card, cardSize), {{}, cardSize}) > 100);
        }
    }

    void aTiersLabelIsInCapitals() {
        TierCard card;
        card.setTier(u"Average"_s, u"13.4"_s, u"$0.97"_s, GasLevel::low);
        const QImage mixed = drawn(card, cardSize);
        card.setTier(u"AVERAGE"_s, u"13.4"_s, u"$0.97"_s, GasLevel::low);
        QCOMPARE(drawn(card, cardSize), mixed);
    }

    void eachTextOfATierIsDrawn() {
        TierCard card;
        card.setTier(u"Low"_s, u"12.5"_s, u"$0.91"_s, GasLevel::low);
        const QImage before = drawn(card, cardSize);
        card.setTier(u"Low"_s, u"12.6"_s, u"$0.91"_s, GasLevel::low);
        QVERIFY(drawn(card, cardSize) != before);
        card.setTier(u"Low"_s, u"12.5"_s, u"$0.92"_s, GasLevel::low);
        QVERIFY(drawn(card, cardSize) != before);
        card.setTier(u"High"_s, u"12.5"_s, u"$0.91"_s, GasLevel::low);
        QVERIFY(drawn(card, cardSize) != before);
        card.setTier(u"Low"_s, u"12.5"_s, u"$0.91"_s, GasLevel::low);
        QCOMPARE(drawn(card, cardSize), before);
    }

    void aLongFigureIsSetSmallerBeforeItIsCut() {
        TierCard card;
        const auto inkWith = [&card](const QString& gwei) {
            card.setTier(u"Low"_s, gwei, u"$0.91"_s, GasLevel::low);
            return drawn(card, cardSize);
        };
        // The last figure can be told apart only where it is drawn.
        QVERIFY(inkWith(u"0.00000123"_s) != inkWith(u"0.00000124"_s));
    }

    void aTierReadsAsAWhole() {
        TierCard card;
        card.setTier(u"Average"_s, u"13.4"_s, u"$0.97"_s, GasLevel::normal);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&card);
        QCOMPARE(interface->text(QAccessible::Name), u"Average: 13.4 gwei, $0.97, Normal"_s);
        QCOMPARE(interface->text(QAccessible::Value), u"13.4 gwei"_s);
    }

    void aLevelIsADotAndAWordInItsColour() {
        LevelLine line;
        line.setLevel(GasLevel::busy);
        const QImage image = drawn(line, line.sizeHint());
        QVERIFY(pixelsOf(Palette::neg, image, {0, 3, 7, 7}) > 20);
        QVERIFY(pixelsOf(Palette::neg, image, {12, 0, 20, 14}) > 5);
        QCOMPARE(nameOf(line), u"Busy"_s);
    }

    void aFigureStandsBeforeItsUnit() {
        FigureLine line(Fonts::mono(24, QFont::Medium), Fonts::mono(12, QFont::Normal), 24, 20);
        line.setFigure({u"12.4"_s, {}});
        const int bare = line.sizeHint().width();
        QCOMPARE(nameOf(line), u"12.4"_s);
        line.setFigure({u"12.4"_s, u"gwei"_s});
        QVERIFY(line.sizeHint().width() > bare + 20);
        QCOMPARE(nameOf(line), u"12.4 gwei"_s);
        const QImage image = drawn(line, line.sizeHint());
        QVERIFY(pixelsOf(Palette::ink.in(Appearance::light), image, {0, 0, bare, 24}) > 20);
        QCOMPARE(pixelsOf(Palette::ink.in(Appearance::light), image, {bare, 0, 20, 24}), 0);
    }

    void aRuleIsHalfAPixelTall() {
        Rule rule(14);
        const QColor ground = Palette::paper.in(Appearance::light);
        const QColor line = Palette::line2.in(Appearance::light);
        const QImage twice = drawn(rule, {344, 1}, 2);
        QCOMPARE(twice.pixelColor(344, 0), line);
        QCOMPARE(twice.pixelColor(344, 1), ground);
        QCOMPARE(twice.pixelColor(27, 0), ground);
        QCOMPARE(twice.pixelColor(28, 0), line);
        QCOMPARE(twice.pixelColor(2 * 330 - 1, 0), line);
        QCOMPARE(twice.pixelColor(2 * 330, 0), ground);
        const QColor once = drawn(rule, {344, 1}, 1).pixelColor(172, 0);
        QVERIFY(once.red() > line.red() && once.red() < ground.red());
    }

    void aRowsStatusHasItsColour_data() {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QColor>("color");
        QTest::newRow("low") << u"Low"_s << Palette::pos;
        QTest::newRow("normal") << u"Normal"_s << Palette::warn;
        QTest::newRow("elevated") << u"Elevated"_s << Palette::neg;
        QTest::newRow("unavailable") << u"Unavailable"_s << Palette::ink3.in(Appearance::light);
        QTest::newRow("unknown") << u"elevated"_s << Palette::ink3.in(Appearance::light);
    }

    void aRowsStatusHasItsColour() {
        QFETCH(QString, status);
        QFETCH(QColor, color);
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, status);
        const QImage image = drawn(row, rowSize);
        QVERIFY(pixelsOf(color, image, statusPlace) > 3);
        for (const QColor& other : {Palette::pos, Palette::warn, Palette::neg}) {
            if (other != color)
                QCOMPARE(pixelsOf(other, image, statusPlace), 0);
        }
    }

    void theStatusColourOfAnUnknownWordFollowsTheAppearance() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Unavailable"_s);
        setCurrentAppearance(Appearance::dark);
        QVERIFY(pixelsOf(Palette::ink3.in(Appearance::dark), drawn(row, rowSize), statusPlace) > 3);
        setCurrentAppearance(Appearance::light);
        QVERIFY(pixelsOf(Palette::ink3.in(Appearance::light), drawn(row, rowSize), statusPlace) > 3);
    }

    void theChartsOfRowsStandBelowEachOther() {
        L2Row usual;
        usual.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Normal"_s);
        L2Row other;
        other.setNetwork(u"Arbitrum"_s, u"—"_s, u"Normal"_s);
        QCOMPARE(usual.chartColumn(344), other.chartColumn(344));
        QCOMPARE(usual.chartColumn(344).size(), QSize(62, 24));
        QCOMPARE(usual.chartColumn(344).center().y(), 16);
    }

    void aChartGivesWayToALongFigure() {
        L2Row usual;
        usual.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Normal"_s);
        L2Row longer;
        longer.setNetwork(u"Base"_s, u"0.000000012 gwei"_s, u"Normal"_s);
        QVERIFY(longer.chartColumn(344).right() < usual.chartColumn(344).left() + 62);
        QVERIFY(longer.chartColumn(344).left() < usual.chartColumn(344).left());
    }

    void aLongNameEndsBeforeTheChartAndIsTheToolTip() {
        L2Row row;
        row.setNetwork(u"The Incredibly Decentralised Superchain"_s, u"0.01 gwei"_s, u"Normal"_s);
        const QImage image = drawn(row, rowSize);
        const QRect chart = row.chartColumn(344);
        QCOMPARE(pixelsOf(Palette::paper.in(Appearance::light), image, chart),
                 chart.width() * chart.height() * enlarged * enlarged);
        row.show();
        QCOMPARE(toolTipOf(row), u"The Incredibly Decentralised Superchain"_s);
        QVERIFY(nameOf(row).startsWith(u"The Incredibly Decentralised Superchain, "_s));
    }

    void anEndlessFigureLeavesRoomForTheNameAndIsTheToolTip() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.0000000000000000000000000012 gwei"_s, u"Normal"_s);
        const QImage image = drawn(row, rowSize);
        const QRect chart = row.chartColumn(344);
        QVERIFY(chart.left() >= statusPlace.left() + 62);
        QCOMPARE(pixelsOf(Palette::paper.in(Appearance::light), image, chart),
                 chart.width() * chart.height() * enlarged * enlarged);
        QVERIFY(pixelsOf(Palette::ink.in(Appearance::light), image, {48, 4, 62, 15}) > 3);
        row.show();
        QCOMPARE(toolTipOf(row), u"0.0000000000000000000000000012 gwei"_s);
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Normal"_s);
        QCOMPARE(toolTipOf(row), QString());
    }

    void aFigureThatIsCutIsItsToolTip() {
        FigureLine line(Fonts::mono(24, QFont::Medium), Fonts::mono(12, QFont::Normal), 24, 20);
        line.setFigure({QString(60, u'9'), u"gwei"_s});
        line.resize(200, 24);
        line.show();
        QCOMPARE(toolTipOf(line), QString(60, u'9') + u" gwei"_s);
        line.setFigure({u"12.4"_s, u"gwei"_s});
        QCOMPARE(toolTipOf(line), QString());
    }

    void aRowReadsAsNameFigureAndStatus() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Elevated"_s);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&row);
        QCOMPARE(interface->role(), QAccessible::Button);
        QCOMPARE(interface->text(QAccessible::Name), u"Base, 0.01 gwei, Elevated"_s);
        QCOMPARE(interface->text(QAccessible::Value), u"0.01 gwei"_s);
        QVERIFY(interface->state().focusable);
    }

    void aPressedRowCopiesItsNameAndFigureAndSaysSoForAMoment() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Elevated"_s);
        QGuiApplication::clipboard()->setText(u"before"_s);
        QTest::mouseClick(&row, Qt::LeftButton);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Base 0.01 gwei"_s);
        QCOMPARE(nameOf(row), u"Base, 0.01 gwei, Copied"_s);
        QVERIFY(pixelsOf(Palette::pos, drawn(row, rowSize), statusPlace) > 3);
        QTRY_COMPARE_WITH_TIMEOUT(nameOf(row), u"Base, 0.01 gwei, Elevated"_s, 30000);
        QVERIFY(pixelsOf(Palette::neg, drawn(row, rowSize), statusPlace) > 3);
    }

    void aNewFigureDoesNotEndThatMoment() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Elevated"_s);
        row.click();
        row.setNetwork(u"Base"_s, u"0.02 gwei"_s, u"Elevated"_s);
        QCOMPARE(nameOf(row), u"Base, 0.02 gwei, Copied"_s);
    }

    void anotherNetworkInTheRowWasNotCopied() {
        L2Row row;
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Elevated"_s);
        row.click();
        row.setNetwork(u"Linea"_s, u"0.02 gwei"_s, u"Low"_s);
        QCOMPARE(nameOf(row), u"Linea, 0.02 gwei, Low"_s);
    }

    void returnEnterAndSpacePressAndAHeldKeyPressesOnce() {
        ActionRow row(u"Refresh Now"_s, u"⌘R"_s, QKeySequence(u"Ctrl+R"_s));
        QSignalSpy clicks(&row, &QAbstractButton::clicked);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            clicks.clear();
            QTest::keyClick(&row, key);
            QCOMPARE(clicks.size(), 1);
        }
        clicks.clear();
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
        QApplication::sendEvent(&row, &held);
        QCOMPARE(clicks.size(), 0);
    }

    void anActionReadsAsItsLabelAndItsKeys() {
        ActionRow row(u"Refresh Now"_s, u"⌘R"_s, QKeySequence(u"Ctrl+R"_s));
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&row);
        QCOMPARE(interface->role(), QAccessible::Button);
        QCOMPARE(interface->text(QAccessible::Name), u"Refresh Now"_s);
        QCOMPARE(interface->text(QAccessible::Accelerator), u"Ctrl+R"_s);
        QAccessibleActionInterface* actions = interface->actionInterface();
        const QString press = QAccessibleActionInterface::pressAction();
        QVERIFY(actions->actionNames().contains(press));
        QCOMPARE(actions->keyBindingsForAction(press), QStringList{u"Ctrl+R"_s});
        QSignalSpy clicks(&row, &QAbstractButton::clicked);
        actions->doAction(press);
        QCOMPARE(clicks.size(), 1);
    }

    void aRowIsSetOffUnderThePointer() {
        QWidget window;
        window.resize(344, 100);
        L2Row row(&window);
        row.setNetwork(u"Base"_s, u"0.01 gwei"_s, u"Elevated"_s);
        row.move(0, 50); // Not where the pointer is at first.
        row.resize(rowSize);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const auto isSetOff = [&row] {
            return pixelsOf(Palette::surface2.in(Appearance::light), drawn(row, rowSize), {150, 2, 20, 30}) ==
                   600 * enlarged * enlarged;
        };
        QTest::mouseMove(&window, {100, 20});
        QTRY_VERIFY(!isSetOff());
        QTest::mouseMove(&row, {100, 10});
        QTRY_VERIFY(isSetOff());
        QTest::mouseMove(&window, {100, 20});
        QTRY_VERIFY(!isSetOff());
    }

    void aCaptionHasRangeAndAverage() {
        QCOMPARE(ChartView::caption({{}, {9.2, 24.8, 7.7}, u"gwei"_s}), u"7.7 – 24.8 gwei · Average 13.9"_s);
        QCOMPARE(ChartView::caption({{}, {5}, u"gwei"_s}), u"5.0 – 5.0 gwei · Average 5.0"_s);
        QCOMPARE(ChartView::caption({{}, {12.04, 12.01}, u"gwei"_s}), u"12.01 – 12.04 gwei · Average 12.0"_s);
    }

    void theAverageOfTheLargestNumbersIsANumber() {
        const double most = std::numeric_limits<double>::max();
        QVERIFY(!ChartView::caption({{}, {most, most}, u"gwei"_s}).contains(u"inf"_s));
        QVERIFY(!ChartView::caption({{}, {-most, -most, -most}, u"gwei"_s}).contains(u"inf"_s));
    }
};

QTEST_MAIN(PopoverPartsTest)
#include "PopoverPartsTest.moc"

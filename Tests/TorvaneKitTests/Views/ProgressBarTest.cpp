#include "Views/ProgressBar.h"

#include "Support/PaintCounter.h"

#include <QAccessible>
#include <QTest>

#include <limits>

using namespace torvane;
using namespace Qt::StringLiterals;

class ProgressBarTest final : public QObject {
    Q_OBJECT

    /// The ends are round, so that their pixels are not quite of the colour.
    static int filledColumns(ProgressBar& bar) {
        const QImage image = bar.grab().toImage();
        int columns = 0;
        for (int x = 0; x < image.width(); ++x)
            columns += image.pixelColor(x, image.height() / 2).lightness() < 128 ? 1 : 0;
        return columns;
    }

private Q_SLOTS:
    void itFillsFromNothingToAll_data() {
        QTest::addColumn<double>("fraction");
        QTest::addColumn<int>("columns");
        QTest::addColumn<QString>("value");
        QTest::newRow("nothing") << 0.0 << 0 << u"0%"_s;
        QTest::newRow("half") << 0.5 << 100 << u"50%"_s;
        QTest::newRow("almost all") << 0.9999 << 199 << u"99%"_s;
        QTest::newRow("all") << 1.0 << 200 << u"100%"_s;
        QTest::newRow("more than all") << 7.0 << 200 << u"100%"_s;
        QTest::newRow("negative") << -1.0 << 0 << u"0%"_s;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0 << u"0%"_s;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 200 << u"100%"_s;
    }

    void itFillsFromNothingToAll() {
        QFETCH(const double, fraction);
        QFETCH(const int, columns);
        QFETCH(const QString, value);
        ProgressBar bar(u"Apples"_s);
        bar.resize(200, 6);
        bar.setFraction(fraction);
        QCOMPARE(filledColumns(bar), columns);
        QCOMPARE(bar.accessibleValue(), value);
    }

    void itIsAValueToAssistiveTechnology() {
        ProgressBar bar(u"Apples"_s);
        bar.setFraction(0.375);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&bar);
        QCOMPARE(interface->role(), QAccessible::ProgressBar);
        QCOMPARE(interface->text(QAccessible::Name), u"Apples"_s);
        QVERIFY(interface->valueInterface());
        QCOMPARE(interface->valueInterface()->currentValue().toDouble(), 37.0);
        QCOMPARE(interface->valueInterface()->maximumValue().toDouble(), 100.0);
    }

    void itIsRepaintedWhenAPixelChanges() {
        ProgressBar bar(u"Apples"_s);
        bar.resize(200, 6);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar, 30'000));
        bar.setFraction(0.5);
        PaintCounter paints(bar);
        bar.setFraction(0.501);
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
        bar.setFraction(0.506);
        PaintCounter::settle();
        QCOMPARE(paints.count(), 1);
    }
};

QTEST_MAIN(ProgressBarTest)
#include "ProgressBarTest.moc"

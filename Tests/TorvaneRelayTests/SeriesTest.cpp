#include "Series.h"

#include <QTest>

using namespace torvane;

namespace {

EarlierRow earlier(const QList<double>& points, double window, double minutesAgo) {
    L2Entry row{};
    row.history = points;
    row.historyWindowMinutes = window;
    return {row, minutesAgo};
}

QList<double> counting(int count) {
    QList<double> points;
    for (int i = 1; i <= count; ++i)
        points.append(i);
    return points;
}

} // namespace

class SeriesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstRunHasNone() { QVERIFY(!continued(std::nullopt, 7, 5)); }

    void theSecondRunStartsWithTheFirstOnesPrice() {
        L2Entry row{};
        row.costGwei = 3;
        const std::optional<Series> series = continued(EarlierRow{row, 5}, 4, 5);
        QVERIFY(series);
        QCOMPARE(series->points, QList<double>({3, 4}));
        QCOMPARE(series->windowMinutes, 5.0);
    }

    void aRunAddsItsPointAndItsMinutes() {
        const std::optional<Series> series = continued(earlier({1, 2, 3}, 10, 6), 4, 5);
        QCOMPARE(series->points, QList<double>({1, 2, 3, 4}));
        QCOMPARE(series->windowMinutes, 16.0);
    }

    void twoRunsThatAreMissingCostNoHistoryAlsoWhenTheTimerIsLate() {
        QVERIFY(continued(earlier({1, 2, 3}, 10, 15), 4, 5));
        QVERIFY(continued(earlier({1, 2, 3}, 10, 15.9), 4, 5));
    }

    void threeRunsThatAreMissingStartItAnewAlsoWhenTheTimerIsEarly() {
        QVERIFY(!continued(earlier({1, 2, 3}, 10, 19), 4, 5));
        QVERIFY(!continued(earlier({1, 2, 3}, 10, 20), 4, 5));
    }

    void aRunWithoutAPriceLeavesAHole() {
        const std::optional<Series> series = continued(earlier({1, 2, 3}, 10, 5), std::nullopt, 5);
        QCOMPARE(series->points, QList<double>({1, 2, 3}));
        QCOMPARE(series->windowMinutes, 15.0);
    }

    void aSeriesOfWhichHalfIsMissingStartsAnew() {
        // Six runs fill 25 minutes, and seven 30.
        QVERIFY(continued(earlier({1, 2, 3}, 20, 5), std::nullopt, 5));
        QVERIFY(!continued(earlier({1, 2, 3}, 25, 5), std::nullopt, 5));
    }

    void whatIsOlderThanADayGoes() {
        const std::optional<Series> series = continued(earlier(counting(289), 1440, 5), 290, 5);
        QCOMPARE(series->points.size(), 289);
        QCOMPARE(series->points.first(), 2.0);
        QCOMPARE(series->points.last(), 290.0);
        QCOMPARE(series->windowMinutes, 1440.0);
    }

    void lateRunsDoNotEatTheSeriesUp() {
        std::optional<Series> series = continued(earlier(counting(289), 1440, 5.3), 290, 5);
        for (int i = 0; i < 400; ++i)
            series = continued(earlier(series->points, series->windowMinutes, i % 2 == 0 ? 4.8 : 5.3), 7, 5);
        QVERIFY(series->points.size() > 270 && series->points.size() < 300);
    }

    void aSeriesOfAnotherMakerIsTakenAsItIs() {
        // A window that is missing or negative says nothing of a series.
        L2Entry row{};
        row.history = QList<double>{1, 2};
        QVERIFY(!continued(EarlierRow{row, 5}, 4, 5));
        QCOMPARE(continued(earlier({1, 2}, -7, 5), 4, 5)->windowMinutes, 5.0);
        QVERIFY(!continued(earlier({}, 10, 5), 4, 5));
    }

    void aPriceFarAboveTheMedianIsElevated() {
        const QList<double> twelve = counting(12); // The median is 6.5.
        QCOMPARE(congestion(9.75, twelve), QStringLiteral("Normal"));
        QCOMPARE(congestion(9.76, twelve), QStringLiteral("Elevated"));
        QCOMPARE(congestion(1000, counting(11)), QStringLiteral("Normal"));
        QCOMPARE(congestion(10.6, counting(13)), QStringLiteral("Elevated")); // The median is 7.
        QCOMPARE(congestion(std::nullopt, twelve), QStringLiteral("Unavailable"));
    }
};

QTEST_GUILESS_MAIN(SeriesTest)
#include "SeriesTest.moc"

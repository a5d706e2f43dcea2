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

    void baseFeesGoOnByOnePointForEachTenMinutes() {
        const QDateTime noon(QDate(2026, 1, 10), QTime(12, 0), Qt::UTC);
        const QList<double> day = counting(144);
        const QList<double> newest{145, 146, 147};
        QCOMPARE(continuedBaseFees(EarlierBaseFees{day, 5}, newest, 7, noon.addSecs(299), 5),
                 day.sliced(1) + QList<double>{147}); // The clock has passed noon.
        QCOMPARE(continuedBaseFees(EarlierBaseFees{day, 5}, newest, 7, noon.addSecs(301), 5), day);
        QCOMPARE(continuedBaseFees(EarlierBaseFees{day, 15}, newest, 7, noon.addSecs(299), 5),
                 day.sliced(2) + QList<double>({146, 147}));
        QCOMPARE(continuedBaseFees(EarlierBaseFees{day, 5}, {}, 7, noon, 5), day.sliced(1) + QList<double>{7});
        // Ten hours of them add sixty.
        QList<double> points = day;
        for (int i = 1; i <= 120; ++i)
            points = continuedBaseFees(EarlierBaseFees{points, 5}, newest, 7, noon.addSecs(i * 300 + i % 20), 5);
        QCOMPARE(points.count(147.0), 60);
        QCOMPARE(points.size(), 144);
    }

    void baseFeesOfAnEarlierTimeGiveWayToWhatIsRead() {
        const QDateTime noon(QDate(2026, 1, 10), QTime(12, 0), Qt::UTC);
        const QList<double> newest{5, 6, 7};
        QCOMPARE(continuedBaseFees(std::nullopt, newest, 8, noon, 5), newest);
        QCOMPARE(continuedBaseFees(EarlierBaseFees{counting(144), 19}, newest, 8, noon, 5), newest);
        QCOMPARE(continuedBaseFees(EarlierBaseFees{{1, 2}, 5}, newest, 8, noon, 5), newest);
        QCOMPARE(continuedBaseFees(EarlierBaseFees{{1, 2, 3}, 5}, newest, 8, noon, 5), QList<double>({1, 2, 3, 7}));
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

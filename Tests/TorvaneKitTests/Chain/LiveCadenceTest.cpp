#include "Chain/LiveCadence.h"

#include <QTest>

#include <limits>

using namespace torvane;

class LiveCadenceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theIntervalFollowsCadenceAndChain_data() {
        QTest::addColumn<LiveGasCadence>("cadence");
        QTest::addColumn<LiveChain>("chain");
        QTest::addColumn<std::optional<double>>("blockTime");
        QTest::addColumn<double>("interval");
        using enum LiveGasCadence;
        const std::optional<double> none;
        QTest::newRow("Ethereum, per block") << perBlock << LiveChain::ethereum << none << 12.0;
        QTest::newRow("Ethereum has its own block time")
            << perBlock << LiveChain::ethereum << std::optional(2.0) << 12.0;
        QTest::newRow("Ethereum, 15s") << fifteen << LiveChain::ethereum << none << 15.0;
        QTest::newRow("Ethereum, 30s") << thirty << LiveChain::ethereum << none << 30.0;
        QTest::newRow("Ethereum, 60s") << sixty << LiveChain::ethereum << none << 60.0;
        QTest::newRow("Layer 2, block time unknown") << perBlock << LiveChain::l2 << none << 5.0;
        QTest::newRow("Layer 2, fast blocks") << perBlock << LiveChain::l2 << std::optional(0.25) << 5.0;
        QTest::newRow("Layer 2, blocks of 5 s") << perBlock << LiveChain::l2 << std::optional(5.0) << 5.0;
        QTest::newRow("Layer 2, blocks of 5.5 s") << perBlock << LiveChain::l2 << std::optional(5.5) << 5.5;
        QTest::newRow("Layer 2, slow blocks") << perBlock << LiveChain::l2 << std::optional(30.0) << 30.0;
        QTest::newRow("Layer 2, block time zero") << perBlock << LiveChain::l2 << std::optional(0.0) << 5.0;
        QTest::newRow("Layer 2, negative block time") << perBlock << LiveChain::l2 << std::optional(-3.0) << 5.0;
        QTest::newRow("Layer 2, no number")
            << perBlock << LiveChain::l2 << std::optional(std::numeric_limits<double>::quiet_NaN()) << 5.0;
        QTest::newRow("Layer 2, 15s") << fifteen << LiveChain::l2 << std::optional(2.0) << 15.0;
        QTest::newRow("Layer 2, 30s") << thirty << LiveChain::l2 << std::optional(120.0) << 30.0;
        QTest::newRow("Layer 2, 60s") << sixty << LiveChain::l2 << none << 60.0;
    }

    void theIntervalFollowsCadenceAndChain() {
        QFETCH(LiveGasCadence, cadence);
        QFETCH(LiveChain, chain);
        QFETCH(std::optional<double>, blockTime);
        QFETCH(double, interval);
        QCOMPARE(livePollInterval(cadence, chain, blockTime), interval);
    }

    void aQuoteIsFreshForThreePollsButAtLeastAMinute_data() {
        QTest::addColumn<double>("interval");
        QTest::addColumn<qint64>("window");
        QTest::newRow("5 s") << 5.0 << qint64{60'000};
        QTest::newRow("12 s") << 12.0 << qint64{60'000};
        QTest::newRow("15 s") << 15.0 << qint64{60'000};
        QTest::newRow("20 s") << 20.0 << qint64{60'000};
        QTest::newRow("30 s") << 30.0 << qint64{90'000};
        QTest::newRow("60 s") << 60.0 << qint64{180'000};
    }

    void aQuoteIsFreshForThreePollsButAtLeastAMinute() {
        QFETCH(double, interval);
        QFETCH(qint64, window);
        const QDateTime fetched = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);
        QVERIFY(isLiveQuoteFresh(fetched, fetched, interval));
        QVERIFY(isLiveQuoteFresh(fetched, fetched.addMSecs(window), interval));
        QVERIFY(!isLiveQuoteFresh(fetched, fetched.addMSecs(window + 1), interval));
        QVERIFY(!isLiveQuoteFresh(fetched, fetched.addDays(30'000), interval));
    }

    void aQuoteFromTheFutureIsNotFresh() {
        const QDateTime fetched = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);
        QVERIFY(!isLiveQuoteFresh(fetched, fetched.addMSecs(-1), 12));
        QVERIFY(!isLiveQuoteFresh(fetched, fetched.addSecs(-1), 12));
    }

    void theAgeDoesNotDependOnTheTimeZoneOfTheTimes() {
        const QDateTime fetched = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::OffsetFromUTC, 7200);
        QVERIFY(isLiveQuoteFresh(fetched, fetched.toUTC().addSecs(60), 12));
        QVERIFY(!isLiveQuoteFresh(fetched, fetched.toUTC().addSecs(61), 12));
    }
};

QTEST_GUILESS_MAIN(LiveCadenceTest)
#include "LiveCadenceTest.moc"

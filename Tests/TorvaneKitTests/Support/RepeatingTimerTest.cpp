#include "Support/RepeatingTimer.h"

#include "Support/Clock.h"

#include <QScopeGuard>
#include <QTest>

#include <chrono>
#include <limits>
#include <memory>

using namespace torvane;

namespace {

constexpr double longest = 2'147'483.647;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

qint64 g_second = 0;

QDateTime simulatedTime() {
    return QDateTime::fromSecsSinceEpoch(g_second, Qt::UTC);
}

} // namespace

class RepeatingTimerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anIntervalIsKeptToTheMillisecondAndClampedToWhatATimerHolds_data() {
        QTest::addColumn<double>("asked");
        QTest::addColumn<double>("held");
        QTest::newRow("a minute") << 60.0 << 60.0;
        QTest::newRow("twelve seconds") << 12.0 << 12.0;
        QTest::newRow("a fraction that binary numbers cannot hold") << 2.3 << 2.3;
        QTest::newRow("to the nearest millisecond") << 0.0129 << 0.013;
        QTest::newRow("one millisecond") << 0.001 << 0.001;
        QTest::newRow("a nanosecond") << 1e-9 << 0.001;
        QTest::newRow("zero") << 0.0 << 0.001;
        QTest::newRow("negative") << -5.0 << 0.001;
        QTest::newRow("negative infinity") << -infinity << 0.001;
        QTest::newRow("not a number") << notANumber << 0.001;
        QTest::newRow("the longest") << longest << longest;
        QTest::newRow("a month") << 30 * 86'400.0 << longest;
        QTest::newRow("astronomic") << 1e300 << longest;
        QTest::newRow("largest double") << std::numeric_limits<double>::max() << longest;
        QTest::newRow("infinity") << infinity << longest;
    }

    void anIntervalIsKeptToTheMillisecondAndClampedToWhatATimerHolds() {
        QFETCH(double, asked);
        QFETCH(double, held);
        for (const double tolerance : {0.0, asked / 10, infinity, notANumber}) {
            const RepeatingTimer timer(this, asked, tolerance, [] {});
            QCOMPARE(findChild<QTimer*>()->interval() / 1000.0, held);
        }
    }

    void itFiresAgainAndAgainAndNotAtOnce() {
        int fired = 0;
        const RepeatingTimer timer(this, 0.002, 0, [&] { ++fired; });
        QCOMPARE(fired, 0);
        QTRY_VERIFY_WITH_TIMEOUT(fired >= 3, 30'000);
    }

    void anIntervalThatIsClampedToTheShortestFires() {
        int fired = 0;
        const RepeatingTimer timer(this, notANumber, notANumber, [&] { ++fired; });
        QTRY_VERIFY_WITH_TIMEOUT(fired >= 2, 30'000);
    }

    void anIntervalThatIsClampedToTheLongestDoesNotFireSoon() {
        int fired = 0;
        int others = 0;
        const RepeatingTimer never(this, infinity, infinity, [&] { ++fired; });
        const RepeatingTimer coarse(this, longest, longest / 10, [&] { ++fired; });
        const RepeatingTimer other(this, 0.001, 0, [&] { ++others; });
        QTRY_VERIFY_WITH_TIMEOUT(others >= 10, 30'000);
        QCOMPARE(fired, 0);
    }

    void destroyingItStopsIt() {
        int fired = 0;
        int others = 0;
        auto timer = std::make_unique<RepeatingTimer>(this, 0.001, 0, [&] { ++fired; });
        QTRY_VERIFY_WITH_TIMEOUT(fired > 0, 30'000);
        timer.reset();
        const int before = fired;
        const RepeatingTimer other(this, 0.001, 0, [&] { ++others; });
        QTRY_VERIFY_WITH_TIMEOUT(others >= 10, 30'000);
        QCOMPARE(fired, before);
    }

    void destroyingItsOwnerStopsIt() {
        auto owner = std::make_unique<QObject>();
        int fired = 0;
        int others = 0;
        const RepeatingTimer timer(owner.get(), 0.001, 0, [&] { ++fired; });
        QTRY_VERIFY_WITH_TIMEOUT(fired > 0, 30'000);
        owner.reset();
        const int before = fired;
        const RepeatingTimer other(this, 0.001, 0, [&] { ++others; });
        QTRY_VERIFY_WITH_TIMEOUT(others >= 10, 30'000);
        QCOMPARE(fired, before);
    }

    void itMayBeDestroyedInsideItsOwnAction() {
        std::unique_ptr<RepeatingTimer> timer;
        const auto token = std::make_shared<int>(7);
        int read = 0;
        timer = std::make_unique<RepeatingTimer>(this, 0.001, 0, [&, token] {
            timer.reset();
            read = *token; // What the action holds lives until it returns.
        });
        QTRY_COMPARE_WITH_TIMEOUT(read, 7, 30'000);
        QCOMPARE(token.use_count(), 1);
    }

    void itMayBeReplacedInsideItsOwnAction() {
        std::unique_ptr<RepeatingTimer> timer;
        int second = 0;
        timer = std::make_unique<RepeatingTimer>(
            this, 0.001, 0, [&] { timer = std::make_unique<RepeatingTimer>(this, 0.002, 0, [&] { ++second; }); });
        QTRY_VERIFY_WITH_TIMEOUT(second >= 2, 30'000);
    }

    void whenTheTimeOfDayHasPassedItFiresAtOnceAndBeginsAnew_data() {
        QTest::addColumn<qint64>("slept");
        QTest::addColumn<int>("expected");
        QTest::newRow("not at all") << qint64{0} << 0;
        QTest::newRow("a second too short") << qint64{59} << 0;
        QTest::newRow("just an interval") << qint64{60} << 1;
        QTest::newRow("a night") << qint64{36'000} << 1;
        QTest::newRow("a clock set back") << qint64{-36'000} << 0;
    }

    void whenTheTimeOfDayHasPassedItFiresAtOnceAndBeginsAnew() {
        QFETCH(qint64, slept);
        QFETCH(int, expected);
        const auto restore = qScopeGuard([] { Clock::setSource(nullptr); });
        g_second = 1'790'000'000;
        Clock::setSource(&simulatedTime);
        int fired = 0;
        RepeatingTimer timer(this, 60, 6, [&] { ++fired; });
        g_second += slept;
        timer.fireIfOverdue();
        QCOMPARE(fired, expected);
        timer.fireIfOverdue();
        QCOMPARE(fired, expected); // The interval has just begun.
    }

    void aFiringThatCameToNothingRemainsDueUntilTheNext() {
        int fired = 0;
        RepeatingTimer timer(this, 60, 6, [&] { ++fired; });
        timer.remainDue();
        QCOMPARE(fired, 0);
        timer.fireIfOverdue();
        QCOMPARE(fired, 1);
        timer.fireIfOverdue();
        QCOMPARE(fired, 1);
    }

    void anOverdueTimerMayDestroyItself() {
        const auto restore = qScopeGuard([] { Clock::setSource(nullptr); });
        g_second = 1'790'000'000;
        Clock::setSource(&simulatedTime);
        std::unique_ptr<RepeatingTimer> timer;
        int fired = 0;
        timer = std::make_unique<RepeatingTimer>(this, 60, 6, [&] {
            ++fired;
            timer.reset();
        });
        g_second += 61;
        timer->fireIfOverdue();
        QCOMPARE(fired, 1);
        QVERIFY(!timer);
    }

    void withoutItsOwnerAnOverdueTimerIsStill() {
        auto owner = std::make_unique<QObject>();
        int fired = 0;
        RepeatingTimer timer(owner.get(), 0.001, 0, [&] { ++fired; });
        owner.reset();
        timer.fireIfOverdue();
        QCOMPARE(fired, 0);
    }
};

QTEST_GUILESS_MAIN(RepeatingTimerTest)
#include "RepeatingTimerTest.moc"

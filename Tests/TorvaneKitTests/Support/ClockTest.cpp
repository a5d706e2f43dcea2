#include "Support/Clock.h"

#include <QTest>
#include <QTimeZone>

using namespace torvane;

namespace {

QDateTime newYear() {
    return QDateTime(QDate(2030, 1, 1), QTime(0, 0), QTimeZone::utc());
}

} // namespace

class ClockTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Clock::setSource(nullptr); }

    void theSystemsTimeIsTakenInUTC() {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const QDateTime now = Clock::now();
        QVERIFY(before <= now && now <= QDateTime::currentDateTimeUtc());
        QCOMPARE(now.timeSpec(), Qt::UTC);
    }

    void aTestSetsTheTime() {
        Clock::setSource(&newYear);
        QCOMPARE(Clock::now(), newYear());
        QCOMPARE(Clock::now(), newYear());
    }

    void noSourceRestoresTheSystemsTime() {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        Clock::setSource(&newYear);
        Clock::setSource(nullptr);
        const QDateTime now = Clock::now();
        QVERIFY(before <= now && now <= QDateTime::currentDateTimeUtc());
    }
};

QTEST_GUILESS_MAIN(ClockTest)
#include "ClockTest.moc"

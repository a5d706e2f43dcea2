#include "Comparison.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class ComparisonTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { qputenv("TORVANE_FIGURES", QFile::encodeName(path())); }
    void cleanup() { QFile::remove(path()); }

    void aRatioIsMetOnItsSideOfTheBar_data() {
        QTest::addColumn<double>("ours");
        QTest::addColumn<double>("yardstick");
        QTest::addColumn<bool>("isLowEnough");
        QTest::addColumn<bool>("isHighEnough");
        QTest::newRow("below") << 1.0 << 4.0 << true << false;
        QTest::newRow("at the bar") << 2.0 << 4.0 << true << true;
        QTest::newRow("above") << 3.0 << 4.0 << false << true;
        QTest::newRow("a yardstick of nothing") << 1.0 << 0.0 << false << false;
        QTest::newRow("a yardstick below nothing") << 1.0 << -1.0 << false << false;
        QTest::newRow("no number") << notANumber << 4.0 << false << false;
    }

    void aRatioIsMetOnItsSideOfTheBar() {
        QFETCH(double, ours);
        QFETCH(double, yardstick);
        QTEST((Comparison{"work", "ms", ours, yardstick, 0.5}.isMet()), "isLowEnough");
        QTEST((Comparison{"work", "ms", ours, yardstick, 0.5, Bar::atLeast}.isMet()), "isHighEnough");
    }

    void aLimitIsMetUpToItsBound() {
        QVERIFY((Limit{"growth", "KiB", 64, 64}.isMet()));
        QVERIFY(!(Limit{"growth", "KiB", 64.5, 64}.isMet()));
        QVERIFY(!(Limit{"growth", "KiB", notANumber, 64}.isMet()));
    }

    void theLargestExponentBetweenNeighboursCounts() {
        const Growth growth{"work", {{10, 5}, {100, 50}, {1000, 5000}, {10000, 5000}}, 1.15};
        QVERIFY(std::abs(growth.exponent() - 2) < 1e-9);
        QVERIFY(!growth.isMet());
        QVERIFY((Growth{"work", {{10, 5}, {100, 50}}, 1.15}.isMet()));
    }

    void timesOfNothingMeetNoExponent() {
        QVERIFY(!(Growth{"work", {{10, 0}, {100, 50}}, 1.15}.isMet()));
        QVERIFY(!(Growth{"work", {{10, 5}, {100, 0}}, 1.15}.isMet()));
    }

    void figuresAreHandedOverAsTheyAreShown() {
        Figures::begin("All work");
        QVERIFY((Comparison{"quick", "ms", 0.05, 0.16, 0.7}.report()));
        QVERIFY(!(Comparison{"slow", "MB/s", 1610, 3220, 1, Bar::atLeast}.report()));
        QVERIFY(!(Limit{"large", "KiB", 65, 64}.report()));
        QVERIFY((Growth{"grown", {{10, 5}, {100, 50}}, 1.15}.report()));
        Comparison{"shared", "kB", 4, 2, 1.1}.reportUncounted("not counted: others");
        QCOMPARE(handedOver(), QByteArrayList({"All work",
                                               "quick\t0.05 ms\t0.16 ms\t0.312\t<= 0.7\tmet",
                                               "slow\t1610 MB/s\t3220 MB/s\t0.500\t>= 1\tMISSED",
                                               "large\t65 KiB\t-\t-\t<= 64 KiB\tMISSED",
                                               "grown\t500 ns\t500 ns\t1.000\t<= 1.15\tmet",
                                               "shared\t4 kB\t2 kB\t2.000\t<= 1.1\tnot counted: others",
                                               {}}));
    }

    void aBenchmarkThatNobodyAskedHandsNothingOver() {
        qunsetenv("TORVANE_FIGURES");
        QVERIFY((Limit{"small", "KiB", 1, 64}.report()));
        QVERIFY(!QFile::exists(path()));
    }

    void theMedianIsTheMiddle() {
        QCOMPARE(median({5}), 5.0);
        QCOMPARE(median({9, 1, 5}), 5.0);
        QCOMPARE(median({9, 1, 5, 7}), 7.0);
    }

private:
    QString path() const { return m_folder.filePath(u"figures"_s); }

    QByteArrayList handedOver() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QByteArrayList();
    }

    QTemporaryDir m_folder;
};

QTEST_APPLESS_MAIN(ComparisonTest)
#include "ComparisonTest.moc"

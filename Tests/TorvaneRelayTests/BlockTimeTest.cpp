#include "BlockTime.h"

#include <QTest>

using namespace torvane;

namespace {

constexpr quint64 largest = std::numeric_limits<quint64>::max();

} // namespace

class BlockTimeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMeanTimeOfABlockIsKnownWhereBothGoForward_data() {
        QTest::addColumn<quint64>("blocks");
        QTest::addColumn<quint64>("seconds");
        QTest::addColumn<double>("expected"); // None: 0.
        const auto row = [](const char* name, quint64 blocks, quint64 seconds, double expected) {
            QTest::newRow(name) << blocks << seconds << expected;
        };
        row("a block every twelve seconds", 100, 1200, 12);
        row("four blocks a second", 1000, 250, 0.25);
        row("the same block", 0, 1200, 0);
        row("the same time", 100, 0, 0);
        row("blocks that go back", largest, 1200, 0);
        row("time that goes back", 100, largest, 0);
    }

    void theMeanTimeOfABlockIsKnownWhereBothGoForward() {
        QFETCH(quint64, blocks);
        QFETCH(quint64, seconds);
        const BlockTime earlier{5000, 1'790'000'000};
        const BlockTime latest{earlier.number + blocks, earlier.seconds + seconds};
        QTEST(secondsPerBlock(latest, earlier).value_or(0), "expected");
    }
};

QTEST_APPLESS_MAIN(BlockTimeTest)
#include "BlockTimeTest.moc"

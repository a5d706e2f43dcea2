#include "Views/PopoverText.h"

#include "Support/SampleSnapshot.h"

#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

const QDateTime now = QDateTime::fromMSecsSinceEpoch(1790000000000, Qt::UTC);

QStringList namesOf(const QList<L2Entry>& entries) {
    QStringList names;
    for (const L2Entry& entry : entries)
        names.append(entry.name);
    return names;
}

} // namespace

class PopoverTextTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void cleanup() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void theHeadlineIsTheBaseFeeInGwei() {
        QCOMPARE(headline(SampleSnapshot::busyHour(), Denomination::gwei), (Figure{u"12.4"_s, u"gwei"_s}));
    }

    void theHeadlineIsThePriceInDollars() {
        QCOMPARE(headline(SampleSnapshot::busyHour(), Denomination::usd), (Figure{u"$3457"_s, {}}));
    }

    void withoutASnapshotTheHeadlineIsADash() {
        QCOMPARE(headline({}, Denomination::gwei), (Figure{u"—"_s, {}}));
        QCOMPARE(headline({}, Denomination::usd), (Figure{u"—"_s, {}}));
    }

    void theLiveBlockStandsAsItIs() {
        QCOMPARE(blockCaption(21000000, SampleSnapshot::busyHour()), u"Mainnet · block 21,000,000"_s);
        QCOMPARE(blockCaption(0, SampleSnapshot::busyHour()), u"Mainnet · block 0"_s);
    }

    void withoutALiveBlockTheSnapshotsIsEstimatedAndMarked() {
        Snapshot snapshot = SampleSnapshot::busyHour();
        snapshot.generatedAt = u"2022-09-15T06:42:59Z"_s;
        QCOMPARE(blockCaption({}, snapshot), u"Mainnet · block ~15,537,393"_s);
    }

    void blocksAreGroupedAsTheUserIsUsedTo() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(blockCaption(21000000, SampleSnapshot::busyHour()), u"Mainnet · block 21.000.000"_s);
    }

    void anAbsentCostIsADash() {
        QCOMPARE(cost({}), u"—"_s);
        QCOMPARE(cost(0.9), u"$0.90"_s);
        QCOMPARE(cost(0.0), u"$0.00"_s);
    }

    void allNetworksAreListedWhereNoneIsSwitchedOff() {
        const Snapshot snapshot = SampleSnapshot::busyHour();
        QCOMPARE(namesOf(enabledL2(snapshot.l2, {})), namesOf(snapshot.l2));
    }

    void networksThatAreSwitchedOffAreLeftOutAndTheOthersKeepTheirOrder() {
        const Snapshot snapshot = SampleSnapshot::busyHour();
        const QStringList expected{u"Arbitrum"_s, u"Base"_s, u"zkSync Era"_s, u"Starknet"_s};
        QCOMPARE(namesOf(enabledL2(snapshot.l2, {u"Optimism"_s, u"Linea"_s, u"base"_s, u"Nowhere"_s})), expected);
    }

    void twoNetworksOfOneNameAreListedOrLeftOutTogether() {
        Snapshot snapshot = SampleSnapshot::busyHour();
        snapshot.l2 = {snapshot.l2[0], snapshot.l2[1], snapshot.l2[0]};
        QCOMPARE(enabledL2(snapshot.l2, {}).size(), 3);
        QCOMPARE(namesOf(enabledL2(snapshot.l2, {u"Arbitrum"_s})), QStringList{u"Optimism"_s});
    }

    void theSelectedNetworkIsTheFirstOfExactlyThatName() {
        Snapshot snapshot = SampleSnapshot::busyHour();
        snapshot.l2.append(snapshot.l2[0]);
        QCOMPARE(selectedL2(snapshot.l2, BadgeChain::l2(u"Arbitrum"_s)), &std::as_const(snapshot.l2)[0]);
        QCOMPARE(selectedL2(snapshot.l2, BadgeChain::l2(u"arbitrum"_s)), nullptr);
        QCOMPARE(selectedL2(snapshot.l2, BadgeChain::ethereum()), nullptr);
    }

    void aLayer2NetworkCalledEthereumIsNotSelectedByMainnet() {
        Snapshot snapshot = SampleSnapshot::busyHour();
        snapshot.l2[3].name = u"Ethereum"_s;
        QCOMPARE(selectedL2(snapshot.l2, BadgeChain::ethereum()), nullptr);
        QCOMPARE(selectedL2(snapshot.l2, BadgeChain::l2(u"Ethereum"_s)), &std::as_const(snapshot.l2)[3]);
    }

    void aNetworksFigureHasItsUnitInGweiAlone() {
        const Snapshot snapshot = SampleSnapshot::busyHour();
        QCOMPARE(primary(snapshot.l2[0], Denomination::gwei), u"0.01 gwei"_s);
        QCOMPARE(primary(snapshot.l2[0], Denomination::usd), u"$0.03"_s);
        QCOMPARE(primary(snapshot.l2[1], Denomination::usd), u"<$0.01"_s);
    }

    void aNetworkWithoutAFigureShowsADash() {
        const Snapshot snapshot = SampleSnapshot::busyHour();
        QCOMPARE(primary(snapshot.l2[5], Denomination::gwei), u"—"_s);
        QCOMPARE(primary(snapshot.l2[5], Denomination::usd), u"—"_s);
    }

    void figuresAreTakenApartAtTheirUnit() {
        QCOMPARE(Figure::of(u"0.01 gwei"_s), (Figure{u"0.01"_s, u"gwei"_s}));
        QCOMPARE(Figure::of(u"$0.03"_s), (Figure{u"$0.03"_s, {}}));
        QCOMPARE(Figure::of(u"—"_s), (Figure{u"—"_s, {}}));
        QCOMPARE(Figure::of(u"0.01 gwei"_s).text(), u"0.01 gwei"_s);
        QCOMPARE(Figure::of(u"—"_s).text(), u"—"_s);
    }

    void theAgeIsInWholeMinutes_data() {
        QTest::addColumn<qint64>("ms");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("old");
        QTest::addColumn<qint64>("next");
        const auto add = [](const char* name, qint64 ms, const char* text, bool old, qint64 next) {
            QTest::newRow(name) << ms << QString::fromUtf8(text) << old << next;
        };
        add("now", 0, "just now", false, 60000);
        add("59 seconds", 59000, "just now", false, 1000);
        add("59.999 seconds", 59999, "just now", false, 1);
        add("60 seconds", 60000, "1m ago", false, 60000);
        add("119.5 seconds", 119500, "1m ago", false, 500);
        add("3 minutes", 180000, "3m ago", false, 60000);
        add("9:59.999", 599999, "9m ago", false, 1);
        add("ten minutes, not yet old", 600000, "10m ago", false, 1000);
        add("ten minutes and a bit", 600900, "10m ago", false, 100);
        add("ten minutes and a second", 601000, "10m ago", true, 59000);
        add("3,599 seconds", 3599000, "59m ago", true, 1000);
        add("two days", 172800000, "2880m ago", true, 60000);
        add("a time to come", -5000, "just now", false, 65000);
        add("a time long to come", -7200000, "just now", false, 7260000);
    }

    void theAgeIsInWholeMinutes() {
        QFETCH(qint64, ms);
        QFETCH(QString, text);
        QFETCH(bool, old);
        QFETCH(qint64, next);
        const QDateTime lastUpdated = now.addMSecs(-ms);
        QCOMPARE(updatedText(lastUpdated, now), text);
        QCOMPARE(isOld(lastUpdated, now), old);
        QCOMPARE(untilNextAge(lastUpdated, now), next);
    }

    void eachChangeOfTheAgeIsForeseen() {
        qint64 age = 0;
        for (int i = 0; i < 30; ++i) {
            const QDateTime lastUpdated = now.addMSecs(-age);
            const qint64 next = untilNextAge(lastUpdated, now);
            const auto says = [lastUpdated](qint64 later) {
                return std::pair{updatedText(lastUpdated, now.addMSecs(later)),
                                 isOld(lastUpdated, now.addMSecs(later))};
            };
            QCOMPARE(says(next - 1), says(0));
            QVERIFY(says(next) != says(0));
            age += next;
        }
    }

    void withoutATimeTheAgeIsADashAndNothingIsOld() {
        QCOMPARE(updatedText({}, now), u"—"_s);
        QVERIFY(!isOld({}, now));
    }
};

QTEST_GUILESS_MAIN(PopoverTextTest)
#include "PopoverTextTest.moc"

#include "Chain/SnapshotMerge.h"

#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"

#include <QTest>

#include <limits>

using namespace torvane;

namespace {

const LiveGasQuote live{20, 21, 22.5, 25, 23'456'789};

Snapshot relayDocument() {
    Snapshot snapshot = SimulatedMarket::at(QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC));
    snapshot.price.eth = 3000;
    snapshot.gas.feeTransferUsd = 7;
    snapshot.gas.feeSwapUsd = 8;
    for (L2Entry& network : snapshot.l2)
        network.rpc = {QStringLiteral("https://localhost:1/rpc")};
    return snapshot;
}

QByteArray gasOf(const Snapshot& snapshot) {
    return JSON::encode(snapshot.gas);
}

} // namespace

class SnapshotMergeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutQuotesTheResultIsTheRelaysDocument() {
        const Snapshot relay = relayDocument();
        QCOMPARE(JSON::encode(mergeSnapshot(relay, std::nullopt, {})), JSON::encode(relay));
    }

    void anEthereumQuoteReplacesTheFourPricesAndTheCostsThatFollow() {
        const Snapshot relay = relayDocument();
        Snapshot expected = relay;
        expected.gas.baseFee = 20;
        expected.gas.low = 21;
        expected.gas.avg = 22.5;
        expected.gas.high = 25;
        expected.gas.feeTransferUsd = 3000.0 * (20.0 * 21000.0 * 0.000000001);
        expected.gas.feeSwapUsd = 3000.0 * (20.0 * 150000.0 * 0.000000001);
        const Snapshot merged = mergeSnapshot(relay, live, {});
        QCOMPARE(JSON::encode(merged), JSON::encode(expected)); // Nothing else has changed.
        QCOMPARE(*merged.gas.feeTransferUsd, 1.26);
        QCOMPARE(*merged.gas.feeSwapUsd, 9.0);
        QCOMPARE(JSON::encode(relay), JSON::encode(relayDocument())); // Nor has what was given.
    }

    void withoutAPriceThereAreNoCosts_data() {
        QTest::addColumn<double>("baseFee");
        QTest::addColumn<double>("ethPrice");
        QTest::newRow("base fee zero") << 0.0 << 3000.0;
        QTest::newRow("price zero") << 20.0 << 0.0;
        QTest::newRow("negative base fee") << -20.0 << 3000.0;
        QTest::newRow("negative price") << 20.0 << -3000.0;
        QTest::newRow("both negative") << -20.0 << -3000.0;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 3000.0;
    }

    void withoutAPriceThereAreNoCosts() {
        QFETCH(double, baseFee);
        QFETCH(double, ethPrice);
        Snapshot relay = relayDocument();
        relay.price.eth = ethPrice;
        LiveGasQuote quote = live;
        quote.baseFee = baseFee;
        const Snapshot merged = mergeSnapshot(relay, quote, {});
        QCOMPARE(merged.gas.high, 25.0);
        QVERIFY(!merged.gas.feeTransferUsd);
        QVERIFY(!merged.gas.feeSwapUsd);
    }

    void costsAppearWhereTheRelayHadNone() {
        Snapshot relay = relayDocument();
        relay.gas.feeTransferUsd = relay.gas.feeSwapUsd = std::nullopt;
        QCOMPARE(mergeSnapshot(relay, live, {}).gas.feeTransferUsd.value_or(0), 1.26);
    }

    void aNetworksQuoteReplacesItsGasPriceAlone() {
        const Snapshot relay = relayDocument();
        Snapshot expected = relay;
        expected.l2[2].costGwei = 0.006;
        const Snapshot merged = mergeSnapshot(relay, std::nullopt, {{relay.l2[2].name, 0.006}});
        QCOMPARE(JSON::encode(merged), JSON::encode(expected));
        QCOMPARE(gasOf(merged), gasOf(relay));
    }

    void aGasPriceAppearsWhereTheRelayHadNone() {
        Snapshot relay = relayDocument();
        relay.l2[0].costGwei = std::nullopt;
        QCOMPARE(mergeSnapshot(relay, {}, {{relay.l2[0].name, 0}}).l2[0].costGwei, std::optional(0.0));
    }

    void ofTwoQuotesForANetworkTheFirstCounts() {
        const Snapshot relay = relayDocument();
        const QString name = relay.l2[1].name;
        QCOMPARE(mergeSnapshot(relay, {}, {{name, 1}, {name, 2}}).l2[1].costGwei, std::optional(1.0));
    }

    void everyEntryOfTheNameTakesTheQuote() {
        Snapshot relay = relayDocument();
        relay.l2[3].name = relay.l2[1].name;
        const Snapshot merged = mergeSnapshot(relay, {}, {{relay.l2[1].name, 1}});
        QCOMPARE(merged.l2[1].costGwei, std::optional(1.0));
        QCOMPARE(merged.l2[3].costGwei, std::optional(1.0));
    }

    void namesMatchExactly() {
        Snapshot relay = relayDocument();
        relay.l2[0].name = QStringLiteral("base");
        relay.l2[1].name = QStringLiteral("Base ");
        relay.l2[2].name = QString();
        const Snapshot merged = mergeSnapshot(relay, {}, {{QStringLiteral("Base"), 5}, {QStringLiteral("Nowhere"), 6}});
        QCOMPARE(JSON::encode(merged), JSON::encode(relay));
    }

    void anEmptyListStaysEmpty() {
        Snapshot relay = relayDocument();
        relay.l2.clear();
        QVERIFY(mergeSnapshot(relay, live, {{QStringLiteral("Base"), 5}}).l2.isEmpty());
    }

    void whatDoesNotChangeIsSharedAndNotCopied() {
        const Snapshot relay = relayDocument();
        const Snapshot merged = mergeSnapshot(relay, live, {{relay.l2[2].name, 0.006}});
        QVERIFY(merged.l2[2].costGwei == 0.006);
        QCOMPARE(merged.gas.history.constData(), relay.gas.history.constData());
        for (qsizetype i = 0; i < relay.l2.size(); ++i) {
            QCOMPARE(merged.l2[i].history->constData(), relay.l2[i].history->constData());
            QCOMPARE(merged.l2[i].rpc->constData(), relay.l2[i].rpc->constData());
        }
        QCOMPARE(merged.staking.liquidStaking.protocols.constData(), relay.staking.liquidStaking.protocols.constData());
    }

    void theListOfNetworksIsSharedWhereNoneChanges() {
        const Snapshot relay = relayDocument();
        QCOMPARE(mergeSnapshot(relay, live, {}).l2.constData(), relay.l2.constData());
        QCOMPARE(mergeSnapshot(relay, live, {{QStringLiteral("Nowhere"), 6}}).l2.constData(), relay.l2.constData());
    }
};

QTEST_GUILESS_MAIN(SnapshotMergeTest)
#include "SnapshotMergeTest.moc"

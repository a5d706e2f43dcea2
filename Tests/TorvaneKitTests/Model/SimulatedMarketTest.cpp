#include "Support/SimulatedMarket.h"

#include "Support/JSON.h"

#include <QTest>

using namespace torvane;

namespace {

const QDateTime start = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);

} // namespace

class SimulatedMarketTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDocumentIsOneThatTheProgramReads() {
        const QByteArray bytes = JSON::encode(SimulatedMarket::at(start));
        QCOMPARE(JSON::encode(JSON::decode<Snapshot>(bytes)), bytes);
    }

    void itHasEthereumAndNineNetworks() {
        QStringList names;
        for (const L2Entry& entry : SimulatedMarket::at(start).l2)
            names << entry.name;
        const char* const expected = "Arbitrum,Optimism,Base,Robinhood Chain,Unichain,zkSync Era,Scroll,Linea,Starknet";
        QCOMPARE(names.join(QLatin1Char(',')), QLatin1StringView(expected));
    }

    void everyProvenanceSaysSimulated() {
        const LiquidStakingData staking = SimulatedMarket::at(start).staking.liquidStaking;
        QCOMPARE(staking.provenance.status, QStringLiteral("simulated"));
        QVERIFY(!staking.protocols.isEmpty());
        for (const LiquidStakingProtocol& protocol : staking.protocols)
            QCOMPARE(protocol.provenance.status, QStringLiteral("simulated"));
    }

    void figuresMoveButStayPlausible() {
        QSet<double> fees;
        for (int minute = 0; minute < 2000; ++minute) {
            const Snapshot snapshot = SimulatedMarket::at(start.addSecs(60 * minute));
            const GasData& gas = snapshot.gas;
            fees.insert(gas.baseFee);
            QVERIFY(gas.baseFee > 1 && gas.baseFee < 60);
            QVERIFY(gas.baseFee < gas.low && gas.low < gas.avg && gas.avg < gas.high);
            QVERIFY(snapshot.price.eth > 3000 && snapshot.price.eth < 4000);
            QVERIFY(std::abs(snapshot.price.change24h) < 10);
        }
        QCOMPARE(fees.size(), 2000);
    }

    void aLaterHistoryContinuesTheEarlierOne() {
        const QList<double> earlier = SimulatedMarket::at(start).gas.history;
        const QList<double> later = SimulatedMarket::at(start.addSecs(600)).gas.history;
        QCOMPARE(earlier.size(), 144);
        QCOMPARE(later.first(143), earlier.last(143));
    }
};

QTEST_GUILESS_MAIN(SimulatedMarketTest)
#include "SimulatedMarketTest.moc"

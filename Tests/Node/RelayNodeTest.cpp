#include "AnvilWorld.h"
#include "Relay.h"
#include "Support/Await.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace torvane;

/// Whole runs against real nodes: every figure of the document is worked out by hand from what AnvilWorld tells.
class RelayNodeTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<AnvilWorld> m_world;
    QTemporaryDir m_directory;
    QStringList m_lines;
    Snapshot m_snapshot;

    QString document() const { return m_directory.filePath(QStringLiteral("snapshot.json")); }

    bool run() {
        m_lines.clear();
        Relay relay(m_world->table(), document(), [this](const QString& line) { m_lines.append(line); });
        const bool isWritten = await(relay.run()).has_value();
        qInfo("%s", qPrintable(m_lines.join(u'\n')));
        return isWritten;
    }

    L2Entry row(const QString& name) const { return *findL2(name, m_snapshot.l2); }

    /// A network's place in the table, from 1.
    double placeOf(const QString& name) const {
        return static_cast<double>(findL2(name, m_snapshot.l2) - m_snapshot.l2.constData()) + 1;
    }

    /// The forecast for the block after one with 8 gwei a thousandth, which is empty, and the node's tip of 1 gwei.
    double gasPrice(const QString& name) const { return 1 + placeOf(name) * 7 / 1000; }

    void expectCost(const QString& name, double ether) const {
        const double dollars = *row(name).costUsd;
        QVERIFY2(std::abs(dollars / (ether * 3200) - 1) < 1e-9,
                 qPrintable(name + u' ' + QString::number(dollars, 'g', 12)));
    }

private Q_SLOTS:
    void initTestCase() {
        QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false"));
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_world = std::make_unique<AnvilWorld>();
        QVERIFY(run());
        const QByteArray bytes = TestFiles::contentOf(document());
        qInfo("%s", bytes.constData());
        m_snapshot = decodedDocument(bytes);
    }

    void cleanupTestCase() { m_world.reset(); }

    void thePriceIsTheFeedsOverAChangeOfItsPhase() {
        QCOMPARE(m_snapshot.price.eth, 3200.0);
        QCOMPARE(m_snapshot.price.chainlinkEth, std::optional(3200.0));
        // Phase 6 ends five hours and ten minutes ago; nineteen rounds earlier it is a day and ten minutes.
        QCOMPARE(m_snapshot.price.change24h, 100.0 * (3200 - 2962) / 2962);
        const double pool = 1e12 / std::pow(1.0001, 195'300);
        QCOMPARE(*m_snapshot.price.sourceSpreadPct, 100 * std::abs(3200 - pool) / 3200);
    }

    /// Block 170 has 10 + 170 mod 7 = 12 gwei. Of three equal transfers the 15th, 50th and 90th percentile fall on the
    /// first, second and third.
    void gasIsThatOfTheNewestBlock() {
        const GasData& gas = m_snapshot.gas;
        QCOMPARE(gas.baseFee, 12.0);
        QCOMPARE(gas.low, 13.0);
        QCOMPARE(gas.avg, 14.0);
        QCOMPARE(gas.high, 15.0);
        QCOMPARE(*gas.feeTransferUsd, 3200 * (12 * 21000 * 1e-9));
        QCOMPARE(*gas.feeSwapUsd, 3200 * (12 * 150000 * 1e-9));
    }

    void theHistoryIsOfWholeFiftiesUpToTheBlockAskedAt() {
        QList<double> expected;
        for (const quint64 first : {19, 69, 119}) {
            double sum = 0;
            for (quint64 block = first; block < first + 50; ++block)
                sum += AnvilWorld::baseFee(block);
            expected.append(sum / 50);
        }
        QCOMPARE(m_snapshot.gas.history, expected); // The last one ends with 168, two below the newest.
    }

    void theRowsAreTheTables() {
        QCOMPARE(m_snapshot.l2.size(), m_world->table().networks.size());
        for (qsizetype i = 0; i < m_snapshot.l2.size(); ++i) {
            const L2Entry& entry = m_snapshot.l2[i];
            const RelayTable::Network network = m_world->table().networks[i];
            QCOMPARE(entry.name, network.name);
            QCOMPARE(entry.tag, network.tag);
            QCOMPARE(entry.status, QStringLiteral("Normal"));
            QVERIFY(!entry.history && !entry.historyWindowMinutes);
            QVERIFY(!entry.txCount && !entry.dailyActiveAddresses && !entry.tvlUsd);
            if (network.transfer == TransferModel::starknet)
                continue;
            QCOMPARE(*entry.costGwei, gasPrice(entry.name));
            QCOMPARE(*entry.rpc, network.endpoints);
            // 999 pairs of blocks two seconds apart, and one more block that the clock has dated.
            QVERIFY(std::abs(*entry.blockTimeSec - 2) < 0.01);
        }
    }

    void estimatesCostTheirUnitsByThePrice() {
        for (const char* name : {"Arbitrum", "Robinhood Chain", "zkSync Era"}) {
            const QString network = QLatin1String(name);
            expectCost(network, (21000 + 7 * placeOf(network)) * gasPrice(network) * 1e-9);
        }
    }

    /// The unsigned transfer: a type, a list's head, and in the list the chain, a nonce of one byte, tip and price of
    /// five each, gas of three, the address of 21, the value of eight, and two empty fields.
    void rollupsAddEthereumsShare() {
        const auto bytes = [](int chain) { return 2.0 + chain + 1 + 5 + 5 + 3 + 21 + 8 + 2; };
        const auto own = [this](const QString& name) { return 21000 * gasPrice(name) * 1e-9; };
        const auto opStack = [&](int chain) { return bytes(chain) * 1e-9 + 3 * 21000 * 1e-18; };
        expectCost(QStringLiteral("Optimism"), own(QStringLiteral("Optimism")) + opStack(1));      // 10
        expectCost(QStringLiteral("Base"), own(QStringLiteral("Base")) + opStack(3));              // 8453
        expectCost(QStringLiteral("Unichain"), own(QStringLiteral("Unichain")) + opStack(2));      // 130, above 127
        expectCost(QStringLiteral("Scroll"), own(QStringLiteral("Scroll")) + 2 * bytes(4) * 1e-9); // 534352
    }

    void whatTheFirstNodeDoesNotKnowTheSecondAnswers() {
        expectCost(QStringLiteral("Linea"), 30000 * 0.05 * 1e-9);
        QCOMPARE(row(QStringLiteral("Linea")).rpc->size(), 2);
    }

    void starknetHasAPriceAndNoCost() {
        const L2Entry starknet = row(QStringLiteral("Starknet"));
        QCOMPARE(*starknet.costGwei, 4.25);
        QCOMPARE(*starknet.blockTimeSec, 3.0);
        QVERIFY(!starknet.costUsd && !starknet.rpc);
    }

    void stakingIsSupplyTimesRate() {
        const LiquidStakingData& staking = m_snapshot.staking.liquidStaking;
        double sum = 0;
        for (const LiquidStakingProtocol& protocol : staking.protocols) {
            const bool isRebasing = protocol.token == QLatin1String("stETH");
            const double rate = isRebasing ? 1 : static_cast<double>(AnvilWorld::rateOf(protocol.token)) / 1e18;
            QCOMPARE(*protocol.tokenSupply, 1000.25);
            QCOMPARE(*protocol.exchangeRate, rate);
            QCOMPARE(*protocol.ethEquivalent, 1000.25 * rate);
            QCOMPARE(protocol.provenance.status, QStringLiteral("live"));
            QVERIFY(protocol.provenance.detail.endsWith(QStringLiteral(" at block 168")));
            sum += 1000.25 * rate;
        }
        QCOMPARE(staking.protocols.size(), 5);
        QCOMPARE(*staking.totalEthEquivalent, sum);
        QCOMPARE(staking.provenance.status, QStringLiteral("live"));
    }

    void theNextRunGoesOnFromTheDocument() {
        Snapshot earlier = m_snapshot;
        earlier.generatedAt = documentTime(QDateTime::currentDateTimeUtc().addSecs(-300));
        TestFiles::put(document(), JSON::encode(earlier));
        QVERIFY(run());
        const Snapshot next = decodedDocument(TestFiles::contentOf(document()));
        for (const L2Entry& entry : next.l2) {
            QCOMPARE(*entry.history, QList<double>({*row(entry.name).costGwei, *entry.costGwei}));
            QVERIFY(*entry.historyWindowMinutes >= 5 && *entry.historyWindowMinutes < 6);
        }
    }

    void anAddressWithoutAContractGivesNoFigure() {
        m_world->ethereum().call(QStringLiteral("anvil_setCode"),
                                 {m_world->table().staking[1].contract, QStringLiteral("0x")});
        m_world->ethereum().call(QStringLiteral("anvil_mine"), {QStringLiteral("0x3")});
        QFile::remove(document());
        QVERIFY(run());
        const LiquidStakingData staking = decodedDocument(TestFiles::contentOf(document())).staking.liquidStaking;
        QCOMPARE(staking.protocols[1].provenance.status, QStringLiteral("unavailable"));
        QVERIFY(!staking.protocols[1].tokenSupply && !staking.protocols[1].exchangeRate);
        QCOMPARE(staking.provenance.status, QStringLiteral("partial"));
        QVERIFY(staking.provenance.detail.startsWith(QStringLiteral("4 of 5 protocols read at block 171")));
    }
};

QTEST_GUILESS_MAIN(RelayNodeTest)
#include "RelayNodeTest.moc"

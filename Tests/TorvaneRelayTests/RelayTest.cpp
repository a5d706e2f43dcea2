#include "Relay.h"

#include "StandInWorld.h"
#include "Support/Await.h"
#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace torvane;

namespace {

QDateTime g_now;

QDateTime now() {
    return g_now;
}

QList<double> rising(int count) {
    QList<double> points;
    for (int i = 0; i < count; ++i)
        points.append(0.001);
    return points;
}

} // namespace

/// Whole runs: what is written, what is kept, and what is said.
class RelayTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<StandInWorld> m_world;
    std::unique_ptr<QTemporaryDir> m_directory;
    QStringList m_lines;

    QString document() const { return m_directory->filePath(QStringLiteral("snapshot.json")); }

    bool run() { return run(m_world->table()); }

    bool run(const RelayTable& table) {
        m_lines.clear();
        Relay relay(table, document(), [this](const QString& line) { m_lines.append(line); });
        return await(relay.run()).has_value();
    }

    Snapshot written() const { return decodedDocument(TestFiles::contentOf(document())); }

    L2Entry base() const { return *findL2(QStringLiteral("Base"), written().l2); }

    /// A run's document with another time.
    void putDocumentOf(const QDateTime& time) {
        Snapshot snapshot = written();
        snapshot.generatedAt = documentTime(time);
        TestFiles::put(document(), JSON::encode(snapshot));
    }

    void advance(int minutes) {
        g_now = g_now.addSecs(minutes * 60);
        m_world->chain(QStringLiteral("Ethereum"))
            .always(QStringLiteral("eth_getBlockByNumber latest"), blockAt(1146, g_now.toSecsSinceEpoch()));
    }

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_world = std::make_unique<StandInWorld>();
        m_directory = std::make_unique<QTemporaryDir>();
        g_now = StandInWorld::now();
        Clock::setSource(&now);
    }

    void cleanup() { Clock::setSource(nullptr); }

    void theDocumentHoldsWhatWasReadAndNothingElse() {
        QVERIFY(run());
        const Snapshot snapshot = written();
        QCOMPARE(snapshot.generatedAt, QStringLiteral("2026-01-10T12:00:00Z"));
        QCOMPARE(snapshot.price.eth, 3000.0);
        QCOMPARE(snapshot.price.chainlinkEth, std::optional(3000.0));
        QCOMPARE(snapshot.price.change24h, 100.0 * 72 / 2928);
        QVERIFY(snapshot.price.sourceSpreadPct.has_value());
        QCOMPARE(*snapshot.gas.feeTransferUsd, 3000 * (10.47146 * 21000 * 1e-9));
        QCOMPARE(*snapshot.gas.feeSwapUsd, 3000 * (10.47146 * 150000 * 1e-9));
        QCOMPARE(snapshot.l2.size(), 5);
        QCOMPARE(base().tag, QStringLiteral("BAS"));
        QCOMPARE(*base().costUsd, 1.626e-6 * 3000);
        QCOMPARE(base().status, QStringLiteral("Normal"));
        QCOMPARE(base().rpc->size(), 1);
        QCOMPARE(*base().blockTimeSec, 2.0);
        QVERIFY(!base().history && !base().historyWindowMinutes && !base().txCount && !base().tvlUsd);
        const LiquidStakingData& staking = snapshot.staking.liquidStaking;
        QCOMPARE(staking.totalEthEquivalent, std::optional(2000.0 + 1125 + 4250));
        QCOMPARE(staking.provenance.status, QStringLiteral("live"));
        QCOMPARE(staking.provenance.detail.section(u';', 0, 0), QStringLiteral("3 of 3 protocols read at block 1144"));
        QCOMPARE(staking.protocols[1].provenance.detail,
                 QStringLiteral("rETH totalSupply() and getExchangeRate() at block 1144"));
        QVERIFY(!staking.shareOfTotalStaked);
        QVERIFY(!TestFiles::contentOf(document()).contains("null"));
    }

    void aProtocolThatIsMissingLeavesNoTotal() {
        m_world->chain(QStringLiteral("Ethereum"))
            .misbehave(QStringLiteral("totalSupply() of 0xae7a"), StandInAnswer::status(503));
        QVERIFY(run());
        const LiquidStakingData staking = written().staking.liquidStaking;
        QCOMPARE(staking.protocols[1].ethEquivalent, std::optional(1125.0));
        QVERIFY(!staking.totalEthEquivalent); // A part would pass for the whole.
        QCOMPARE(staking.provenance.status, QStringLiteral("partial"));
        QCOMPARE(staking.provenance.detail.section(u';', 0, 0), QStringLiteral("2 of 3 protocols read at block 1144"));
    }

    void aTableWithoutProtocolsSaysSo() {
        RelayTable table = m_world->table();
        table.staking.clear();
        QVERIFY(run(table));
        const LiquidStakingData staking = written().staking.liquidStaking;
        QVERIFY(staking.protocols.isEmpty() && !staking.totalEthEquivalent);
        QCOMPARE(staking.provenance.status, QStringLiteral("unavailable"));
        QCOMPARE(staking.provenance.detail, QStringLiteral("the relay's table names no protocols"));
        QVERIFY(m_lines.contains(QStringLiteral("Staking: the relay's table names no protocols")));
    }

    void everyoneMayReadTheDocument() {
        QVERIFY(run());
        struct stat status {};
        QCOMPARE(::stat(QFile::encodeName(document()), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t{0644});
    }

    void aRunTellsEachRowInALine() {
        QVERIFY(run());
        QCOMPARE(m_lines.size(), 8);
        QCOMPARE(
            m_lines[0],
            QStringLiteral("Ethereum: block 1146, base fee 10.5 gwei, ETH $3,000.00 (+2.5%), 22 points of base fees"));
        QCOMPARE(m_lines[2], QStringLiteral("Base: 0.006 gwei, <$0.01 a transfer, Normal"));
        QVERIFY(m_lines[7].startsWith(QStringLiteral("Wrote ") + document()));
    }

    void theNextRunStartsTheHistories() {
        QVERIFY(run());
        advance(5);
        QVERIFY(run());
        QCOMPARE(*base().history, QList<double>({0.006, 0.006}));
        QCOMPARE(*base().historyWindowMinutes, 5.0);
        advance(7);
        QVERIFY(run());
        QCOMPARE(base().history->size(), 3);
        QCOMPARE(*base().historyWindowMinutes, 12.0);
        QCOMPARE(written().generatedAt, QStringLiteral("2026-01-10T12:12:00Z"));
    }

    void aPriceFarAboveItsHistoryIsElevated() {
        QVERIFY(run());
        Snapshot snapshot = written();
        snapshot.l2[1].history = rising(12);
        snapshot.l2[1].historyWindowMinutes = 55;
        TestFiles::put(document(), JSON::encode(snapshot));
        advance(5);
        QVERIFY(run());
        QCOMPARE(base().status, QStringLiteral("Elevated"));
        QCOMPARE(base().history->size(), 13);
        advance(19); // Too long a pause to know what is usual.
        QVERIFY(run());
        QCOMPARE(base().status, QStringLiteral("Normal"));
        QVERIFY(!base().history);
    }

    void baseFeesThatCannotBeReadKeepTheEarlierDocuments() {
        QVERIFY(run());
        const QList<double> whole = written().gas.history;
        QCOMPARE(whole.size(), 22);
        advance(10);
        m_world->chain(QStringLiteral("Ethereum"))
            .misbehave(QStringLiteral("eth_feeHistory earlier"), StandInAnswer::status(503), 1);
        QVERIFY(run());
        QCOMPARE(written().gas.history, whole + QList<double>{whole.last()});
        QVERIFY(m_lines[0].endsWith(QStringLiteral(", 23 points of base fees, of which nodes gave only 8 now")));
        advance(10);
        m_world->chain(QStringLiteral("Ethereum"))
            .misbehave(QStringLiteral("eth_feeHistory earlier"), StandInAnswer::status(503));
        QVERIFY(run());
        QCOMPARE(written().gas.history, whole + QList<double>({whole.last(), 10.47146}));
        advance(19); // Too long a pause.
        QVERIFY(run());
        QVERIFY(written().gas.history.isEmpty());
    }

    void aNetworkThatIsGoneKeepsItsHistoryForAWhile() {
        for (int i = 0; i < 3; ++i, advance(5))
            QVERIFY(run());
        m_world->chain(QStringLiteral("Base")).server().stop();
        QVERIFY(run());
        QCOMPARE(base().status, QStringLiteral("Unavailable"));
        QVERIFY(!base().costGwei && !base().costUsd && !base().rpc && !base().blockTimeSec);
        QCOMPARE(base().history->size(), 3);
        QCOMPARE(*base().historyWindowMinutes, 15.0);
    }

    void theDocumentOfYesterdayStartsAnew() {
        QVERIFY(run());
        advance(5);
        QVERIFY(run());
        QVERIFY(base().history);
        putDocumentOf(StandInWorld::now().addDays(-1));
        advance(5);
        QVERIFY(run());
        QVERIFY(!base().history);
        QCOMPARE(written().generatedAt, QStringLiteral("2026-01-10T12:10:00Z"));
    }

    void aDocumentOfTheFutureIsLeftAsItIs() {
        QVERIFY(run());
        putDocumentOf(g_now.addSecs(3600));
        const QByteArray before = TestFiles::contentOf(document());
        m_world->chain(QStringLiteral("Ethereum")).server().clearRequests();
        QVERIFY(!run());
        QCOMPARE(TestFiles::contentOf(document()), before);
        QCOMPARE(m_lines.size(), 1);
        QVERIFY(m_lines[0].startsWith(
            QStringLiteral("Nothing written: the document that is there is of 2026-01-10T13:00:00Z")));
        QVERIFY(m_world->chain(QStringLiteral("Ethereum")).server().requests().isEmpty());
    }

    void twoDocumentsNeverHaveTheSameTime() {
        QVERIFY(run());
        QVERIFY(!run());
        g_now = g_now.addMSecs(999); // Documents have whole seconds.
        QVERIFY(!run());
        g_now = g_now.addMSecs(1);
        QVERIFY(run());
    }

    void aDamagedDocumentIsReplacedAndHistoriesStartAnew_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        init();
        QVERIFY(run());
        const QByteArray good = TestFiles::contentOf(document());
        QTest::newRow("truncated") << good.first(good.size() / 2) << QString();
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("another version") << QByteArray(good).replace("\"baseFee\"", "\"base\"")
                                         << QStringLiteral("gas.baseFee: missing");
        QTest::newRow("another type") << QByteArray(good).replace("\"eth\":3000", "\"eth\":\"3000\"")
                                      << QStringLiteral("price.eth: expected a number, found a string");
        QTest::newRow("no time") << QByteArray(good).replace("2026-01-10T12:00:00Z", "yesterday")
                                 << QStringLiteral("generatedAt: ");
    }

    void aDamagedDocumentIsReplacedAndHistoriesStartAnew() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        TestFiles::put(document(), bytes);
        QVERIFY(run());
        QVERIFY(!base().history);
        QVERIFY(m_lines[0].startsWith(document() + QStringLiteral(" is no snapshot: ") + reason));
        QVERIFY(m_lines[0].endsWith(QStringLiteral("; histories start anew")));
    }

    void aRequiredFigureThatIsMissingLeavesTheDocumentAsItIs() {
        QVERIFY(run());
        const QByteArray before = TestFiles::contentOf(document());
        advance(5);
        m_world->chain(QStringLiteral("Ethereum"))
            .misbehave(QStringLiteral("latestRoundData() of 0x5f4e"), StandInAnswer::status(503));
        QVERIFY(!run());
        QCOMPARE(m_lines,
                 QStringList{QStringLiteral("Nothing written: no price of ether: localhost: HTTP status 503")});
        QCOMPARE(TestFiles::contentOf(document()), before);
    }

    void withoutNodesNothingIsWrittenAndOneLineSaysWhy() {
        for (const QString& name : m_world->names())
            m_world->chain(name).server().stop();
        QVERIFY(!run());
        QCOMPARE(m_lines.size(), 1);
        QVERIFY2(m_lines[0].startsWith(QStringLiteral("Nothing written: no node of Ethereum: localhost: ")),
                 qPrintable(m_lines[0]));
        QVERIFY(!QFile::exists(document()));
    }

    void twoRunsAtOnceDoNotDisturbEachOther() {
        const RunLock other(document());
        QVERIFY(!run());
        QCOMPARE(m_lines, QStringList{QStringLiteral("Nothing written: another run is at work on ") + document()});
    }

    void aPlaceThatCannotBeWrittenIsSaid() {
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("snapshot.json")));
        QVERIFY(!run());
        QVERIFY(m_lines[0].contains(QStringLiteral("cannot be read")));
        QVERIFY(m_lines.last().endsWith(QStringLiteral("cannot be written")));
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().rmdir(m_directory->path()));
        QVERIFY(!run());
        QVERIFY(m_lines[0].startsWith(QStringLiteral("Nothing written: no file can be made beside ")));
    }

    void aRunThatIsGivenUpWritesNothing() {
        {
            Relay relay(m_world->table(), document(), [](const QString&) {});
            const Task<std::optional<QByteArray>> task = relay.run();
            task.start();
            QTRY_VERIFY(!m_world->chain(QStringLiteral("Ethereum")).server().requests().isEmpty());
        }
        QVERIFY(!QFile::exists(document()));
        QVERIFY(run()); // And the lock is free.
    }
};

QTEST_GUILESS_MAIN(RelayTest)
#include "RelayTest.moc"

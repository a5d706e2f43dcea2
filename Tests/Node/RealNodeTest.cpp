#include "AnvilNode.h"
#include "Chain/JSONRPC.h"
#include "Chain/LiveGasClient.h"
#include "Support/Await.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"

using namespace torvane;

namespace {

constexpr quint64 milligwei = 1'000'000;

/// Priority fees of six equal transfers, 0.1 gwei apart.
QList<quint64> priorityFees(quint64 lowest) {
    QList<quint64> fees;
    for (quint64 i = 0; i < 6; ++i)
        fees.append(lowest + i * 100 * milligwei);
    return fees;
}

QStringList chain(const char* id) {
    return {QStringLiteral("--chain-id"),  QLatin1String(id),
            QStringLiteral("--base-fee"),  QStringLiteral("12000000000"),
            QStringLiteral("--gas-limit"), QStringLiteral("30000000")};
}

/// Base fee, low, average, high and block number, for a comparison that names the one that differs.
QList<double> figures(const LiveGasQuote& quote) {
    return {quote.baseFee, quote.low, quote.avg, quote.high, static_cast<double>(quote.blockNumber)};
}

quint64 number(const QJsonValue& quantity) {
    return HexQuantity::fromText(quantity.toString()).value;
}

} // namespace

/// The client against a real node instead of answers that we wrote ourselves.
class RealNodeTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<AnvilNode> m_node;
    LiveGasClient m_client;

    void useAs(const QString& primary, const QString& fallback) const {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        TestConfig::setEthereumRPCURLs(primary, fallback);
    }

private Q_SLOTS:
    void initTestCase() { m_node = std::make_unique<AnvilNode>(chain("1")); }

    void cleanupTestCase() { m_node.reset(); }

    void init() { useAs(m_node->url().toString(), QStringLiteral("https://localhost:1")); }

    /// 25 blocks. Block b (from 0) has a base fee of 12 + b mod 5 gwei, and its lowest priority fee is 0.05 gwei plus
    /// 0.02 for each unit of 7b mod 25. The last 20 blocks have the units 0..24 without 0, 3, 7, 14, 21; the eleventh
    /// of these by size is 13: 0.05 + 0.26 = 0.31 gwei. Of six equal transfers the 15th, 50th and 90th percentile of
    /// the gas fall on the first, third and sixth: 0.31, 0.51, 0.81. The newest block has b = 24, number 25 and 16
    /// gwei.
    void theFiguresAreThoseComputedByHand() {
        for (quint64 b = 0; b < 25; ++b)
            m_node->mine((12 + b % 5) * 1000 * milligwei, priorityFees((50 + 20 * (7 * b % 25)) * milligwei));
        const LiveGasQuote quote = await(m_client.ethereum());
        QCOMPARE(figures(quote), QList<double>({16, 16 + 0.31, 16 + 0.51, 16 + 0.81, 25.0}));
    }

    void emptyBlocksLeaveTheBaseFeeAlone() {
        m_node->call(QStringLiteral("anvil_mine"), {QStringLiteral("0x14")});
        const QJsonValue head = m_node->call(QStringLiteral("eth_getBlockByNumber"), {QStringLiteral("latest"), false});
        const double baseFee = HexQuantity{number(head[QLatin1String("baseFeePerGas")])}.gwei();
        QVERIFY(baseFee < 16); // It falls from empty block to empty block.
        const LiveGasQuote quote = await(m_client.ethereum());
        QCOMPARE(figures(quote), QList<double>({baseFee, baseFee, baseFee, baseFee, 45}));
        QCOMPARE(number(head[QLatin1String("number")]), quote.blockNumber);
    }

    void aYoungChainAnswersWithFewerBlocks() {
        AnvilNode young(chain("1"));
        useAs(young.url().toString(), QStringLiteral("https://localhost:1"));
        QCOMPARE(figures(await(m_client.ethereum())), QList<double>({12, 12, 12, 12, 0}));
        young.mine(9'000 * milligwei, {1'500 * milligwei});
        // Of two blocks the upper median is the larger fee.
        QCOMPARE(figures(await(m_client.ethereum())), QList<double>({9, 10.5, 10.5, 10.5, 1}));
    }

    void aNetworksGasPriceIsTheNodesOwn() {
        AnvilNode base(chain("8453"));
        QCOMPARE(number(base.call(QStringLiteral("eth_chainId"))), quint64{8453});
        base.mine(5 * milligwei, {});
        L2Entry network{};
        network.name = QStringLiteral("Base");
        network.rpc = {QStringLiteral("https://localhost:1"), base.url().toString()};
        const LiveL2Quote quote = await(m_client.l2(network));
        QCOMPARE(quote.name, network.name);
        QCOMPARE(quote.gasPriceGwei, HexQuantity{number(base.call(QStringLiteral("eth_gasPrice")))}.gwei());
        // The next base fee, an eighth below that of an empty block, and this node's usual tip of 1 gwei.
        QCOMPARE(quote.gasPriceGwei, 1 + 0.005 * 7 / 8);
    }

    void aPrimaryThatIsDownOrBusyLeavesItToTheFallback() {
        StandInServer busy;
        busy.on("/", StandInAnswer::status(503));
        const QString node = m_node->url().toString();
        for (const QString& primary : {QStringLiteral("https://localhost:1"), busy.url({}).toString()}) {
            useAs(primary, node);
            QCOMPARE(await(m_client.ethereum()).blockNumber, quint64{45});
        }
        QCOMPARE(busy.requests().size(), 1);
    }
};

QTEST_GUILESS_MAIN(RealNodeTest)
#include "RealNodeTest.moc"

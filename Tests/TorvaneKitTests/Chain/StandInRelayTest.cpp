#include "Support/StandInRelay.h"

#include "Chain/FeeHistory.h"
#include "Chain/LiveGasClient.h"
#include "Fetch.h"
#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInNodes.h"
#include "Support/TestConfig.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

using namespace torvane;

namespace {

using namespace std::chrono_literals;

const QDateTime start = QDateTime::fromSecsSinceEpoch(1'790'000'100, Qt::UTC); // A document's stamp.
QDateTime g_now = start;

/// What a live call brings; fails the test where it throws.
template <class Quote>
Task<> take(Task<Quote> call, std::optional<Quote>& quote) {
    try {
        const Quote answer = co_await call;
        quote = answer;
    } catch (const std::exception& failure) {
        qWarning("%s", failure.what());
    }
}

template <class Quote>
std::optional<Quote> outcomeOf(Task<Quote> call) {
    std::optional<Quote> quote;
    Task<> taking = take(std::move(call), quote);
    taking.start();
    return QTest::qWaitFor([&taking] { return taking.isDone(); }, 30000) ? quote : std::nullopt;
}

std::optional<LiveGasQuote> ethereum() {
    return outcomeOf(LiveGasClient{}.ethereum());
}

} // namespace

class StandInRelayTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        g_now = start;
        Clock::setSource([] { return g_now; });
        m_relay = std::make_unique<StandInRelay>();
        const QString origin = m_relay->server().url({}).toString();
        TestConfig::setRelayHost(m_relay->server().host());
        TestConfig::setEthereumRPCURLs(origin, origin);
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
    }

    void theLiveFiguresContinueTheDocuments() {
        const GasData document = m_relay->document().gas;
        const std::optional<LiveGasQuote> quote = ethereum();
        QVERIFY(quote);
        // The newest block is up to twelve seconds older than the document, and each pays its own tips.
        QVERIFY(std::abs(quote->baseFee / document.baseFee - 1) < 0.02);
        QVERIFY(std::abs(quote->low / document.low - 1) < 0.04);
        QVERIFY(std::abs(quote->avg / document.avg - 1) < 0.04);
        QVERIFY(std::abs(quote->high / document.high - 1) < 0.08);
        QVERIFY(quote->baseFee < quote->low && quote->low < quote->avg && quote->avg < quote->high);
    }

    void aBlockComesEachTwelveSeconds() {
        const std::optional<LiveGasQuote> before = ethereum();
        g_now = g_now.addSecs(12);
        const std::optional<LiveGasQuote> after = ethereum();
        QVERIFY(before && after);
        QCOMPARE(before->blockNumber, StandInNodes::blockNumber(start));
        QCOMPARE(after->blockNumber, before->blockNumber + 1);
        QVERIFY(after->baseFee != before->baseFee);
    }

    void aFeeHistoryHoldsWhatRealNodesSend() {
        const QByteArray call =
            R"({"jsonrpc":"2.0","id":7,"method":"eth_feeHistory","params":["0x28","latest",[50,90,99,100]]})";
        const QByteArray body = StandInNodes::ethereum(call, g_now, {});
        QVERIFY(body.contains("\"id\":7"));
        QVERIFY(body.contains("baseFeePerBlobGas") && body.contains("blobGasUsedRatio"));
        const auto history = JSON::decode<JSONRPCResponse<FeeHistoryResponse>>(body).value();
        QCOMPARE(history.baseFeePerGas.size(), 41);
        QCOMPARE(history.gasUsedRatio.size(), 40);
        QCOMPARE(history.reward.size(), 40);
        // Forty blocks in a row: one of them is empty and paid nothing.
        const QList<HexQuantity> nothing(4, HexQuantity{0});
        QCOMPARE(history.reward.count(nothing), 1);
        QCOMPARE(history.gasUsedRatio.count(0.0), 1);
    }

    void everyNetworkButStarknetHasANodeWithTheDocumentsPrice() {
        for (const L2Entry& entry : m_relay->document().l2) {
            QCOMPARE(entry.rpc.has_value(), entry.name != QStringLiteral("Starknet"));
            if (!entry.rpc)
                continue;
            const std::optional<LiveL2Quote> quote = outcomeOf(LiveGasClient{}.l2(entry));
            QVERIFY2(quote, qPrintable(entry.name));
            QCOMPARE(quote->name, entry.name);
            QVERIFY(std::abs(quote->gasPriceGwei - *entry.costGwei) < 1e-9); // A wei.
        }
    }

    void aSetBaseFeeIsTheNodesToo() {
        QCOMPARE(order("baseFee 7.5"), QStringLiteral("\"\""));
        const std::optional<LiveGasQuote> quote = ethereum();
        QVERIFY(quote);
        QCOMPARE(quote->baseFee, 7.5);
        QCOMPARE(m_relay->document().gas.baseFee, 7.5);
        QCOMPARE(order("baseFee"), QStringLiteral("\"\""));
        const std::optional<LiveGasQuote> moving = ethereum();
        QVERIFY(moving && moving->baseFee != 7.5);
    }

    void aSetMomentStandsStillInADocumentOfNow() {
        QCOMPARE(order("moment 2026-03-03T14:00:00Z"), QStringLiteral("\"\""));
        const Snapshot before = m_relay->document();
        QCOMPARE(before.generatedAt, start.toString(Qt::ISODateWithMs));
        const QDateTime moment(QDate(2026, 3, 3), QTime(14, 0), Qt::UTC);
        QCOMPARE(before.gas.baseFee, SimulatedMarket::baseFee(moment));
        g_now = g_now.addSecs(3600);
        QCOMPARE(JSON::encode(m_relay->document()), JSON::encode(before));
        const std::optional<LiveGasQuote> quote = ethereum();
        QVERIFY(quote);
        QCOMPARE(quote->blockNumber, StandInNodes::blockNumber(moment));
        QCOMPARE(order("moment"), QStringLiteral("\"\""));
        QCOMPARE(m_relay->document().gas.baseFee, SimulatedMarket::baseFee(g_now));
    }

    void whatANodeDoesNotKnowIsAnErrorObject_data() {
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<QByteArray>("code");
        QTest::newRow("a method") << QByteArray(R"({"id":1,"method":"eth_call","params":[]})") << QByteArray("-32601");
        QTest::newRow("no method") << QByteArray(R"({"id":1})") << QByteArray("-32600");
        QTest::newRow("no JSON") << QByteArray("gas?") << QByteArray("-32600");
        QTest::newRow("another block") << QByteArray(R"({"method":"eth_feeHistory","params":["0x14","0x1",[]]})")
                                       << QByteArray("-32602");
        QTest::newRow("a count that is none")
            << QByteArray(R"({"method":"eth_feeHistory","params":[20,"latest",[]]})") << QByteArray("-32602");
    }

    void whatANodeDoesNotKnowIsAnErrorObject() {
        QFETCH(QByteArray, call);
        QFETCH(QByteArray, code);
        const QString outcome = post("/", call);
        QVERIFY2(outcome.contains(QLatin1String("\"code\":") + QLatin1String(code)), qPrintable(outcome));
    }

    void starknetsAddressAndAGetFindNoNode() {
        QCOMPARE(post("/rpc/starknet", "{}"), QStringLiteral("http 404"));
        QCOMPARE(Fetch::outcomeOf(m_relay->server().url(QStringLiteral("/"))), QStringLiteral("http 405"));
    }

    void nodesMisbehaveAsTold_data() {
        QTest::addColumn<QByteArray>("kind");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("off") << QByteArray("off") << QStringLiteral("connection");
        QTest::newRow("status") << QByteArray("status 503") << QStringLiteral("http 503");
        QTest::newRow("redirect") << QByteArray("redirect https://localhost:1/") << QStringLiteral("http 302");
        QTest::newRow("truncate") << QByteArray("truncate") << QStringLiteral("connection");
        QTest::newRow("endless") << QByteArray("endless") << QStringLiteral("too large");
        QTest::newRow("silence") << QByteArray("silence") << QStringLiteral("timed out");
        QTest::newRow("drip") << QByteArray("drip") << QStringLiteral("timed out");
        QTest::newRow("garbage") << QByteArray("garbage") << QStringLiteral("\"{\"generatedAt\": garbage\"");
        QTest::newRow("error") << QByteArray("error") << QStringLiteral("\"{\"jsonrpc\":\"2.0\",\"id\":null,\"error\"");
    }

    void nodesMisbehaveAsTold() {
        QFETCH(QByteArray, kind);
        QFETCH(QString, outcome);
        QCOMPARE(order("nodes " + kind), QStringLiteral("\"\""));
        const bool neverEnds = outcome == QStringLiteral("timed out");
        const std::chrono::milliseconds limit = neverEnds ? 500ms : 30000ms;
        const QString ethereumOutcome = post("/", "{}", limit);
        QVERIFY2(ethereumOutcome.startsWith(outcome), qPrintable(ethereumOutcome));
        const QString networkOutcome = post("/rpc/base", "{}", limit);
        QVERIFY2(networkOutcome.startsWith(outcome), qPrintable(networkOutcome));
        // The relay itself goes on, and the nodes come back.
        QVERIFY(Fetch::outcomeOf(snapshotURL()).startsWith(QLatin1Char('"')));
        QCOMPARE(order("nodes normal"), QStringLiteral("\"\""));
        QVERIFY(ethereum());
    }

    void theRelayMisbehavesWithoutItsNodes() {
        QCOMPARE(order("answer off"), QStringLiteral("\"\""));
        QVERIFY(Fetch::outcomeOf(snapshotURL()).startsWith(QLatin1String("connection")));
        QCOMPARE(order("answer silence"), QStringLiteral("\"\""));
        QCOMPARE(Fetch::outcomeOf(Request{.url = snapshotURL(), .timeout = 200ms}), QStringLiteral("timed out"));
        QVERIFY(ethereum());
    }

    void itPublishesTheFilesOfAFolderAsTheyAre() {
        const QTemporaryDir folder;
        QFile feed(folder.filePath(QStringLiteral("appcast.xml")));
        QVERIFY(feed.open(QIODevice::WriteOnly) && feed.write("<rss/>") == 6);
        feed.close();
        QCOMPARE(Fetch::outcomeOf(feedURL()), QStringLiteral("http 404"));
        QCOMPARE(order("publish " + QFile::encodeName(folder.path())), QStringLiteral("\"\""));
        QCOMPARE(Fetch::outcomeOf(feedURL()), QStringLiteral("\"<rss/>\""));
        QCOMPARE(order("updates off"), QStringLiteral("\"\""));
        QVERIFY(Fetch::outcomeOf(feedURL()).startsWith(QLatin1String("connection")));
        QCOMPARE(order("updates normal"), QStringLiteral("\"\""));
        QVERIFY(feed.remove());
        QCOMPARE(Fetch::outcomeOf(feedURL()), QStringLiteral("http 404"));
    }

    void anOrderThatItDoesNotUnderstandIsRefused_data() {
        QTest::addColumn<QByteArray>("order");
        for (const char* order :
             {"", "nodes", "nodes asleep", "nodes status 99", "answer error", "baseFee much", "baseFee nan",
              "baseFee -1", "moment noon", "moment 2026-03-03T14:00:00", "certificate none", "publish", "publish here",
              "publish /no/such/folder", "updates error", "stop"})
            QTest::newRow(*order ? order : "nothing") << QByteArray(order);
    }

    void anOrderThatItDoesNotUnderstandIsRefused() {
        QFETCH(QByteArray, order);
        QCOMPARE(this->order(order), QStringLiteral("http 400"));
    }

private:
    QString post(const char* path, const QByteArray& body, std::chrono::milliseconds limit = 30s) const {
        return Fetch::outcomeOf(Request{.url = m_relay->server().url(QLatin1String(path)),
                                        .method = "POST",
                                        .body = body,
                                        .timeout = limit,
                                        .bodyLimit = rpcBodyLimit});
    }

    QString order(const QByteArray& text) const {
        return Fetch::outcomeOf(
            Request{.url = m_relay->server().url(QStringLiteral("/control")), .method = "POST", .body = text});
    }

    QUrl feedURL() const { return m_relay->server().url(QStringLiteral("/torvane/appcast.xml")); }
    QUrl snapshotURL() const { return m_relay->server().url(QStringLiteral("/snapshot.json")); }

    std::unique_ptr<StandInRelay> m_relay;
};

QTEST_GUILESS_MAIN(StandInRelayTest)
#include "StandInRelayTest.moc"

#include "Chain/LiveGasClient.h"

#include "Chain/FeeHistory.h"
#include "Support/Await.h"
#include "Support/LogLines.h"
#include "Support/RPCAnswers.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"

using namespace torvane;

namespace {

const LiveGasQuote goodQuote{12, 12 + 0.15, 12 + 0.35, 12 + 0.65, 6};

QString words(const FeeHistoryFailure& failure) {
    return failure.which() == FeeHistoryFailure::Case::invalidLengths ? QStringLiteral("lengths")
                                                                      : QStringLiteral("reward");
}

QString words(const JSONRPCFailure& failure) {
    return failure.remoteError() ? QStringLiteral("remote: ") + failure.remoteError()->message
                                 : QStringLiteral("no result");
}

QString words(const LiveGasFailure& failure) {
    return failure.which() == LiveGasFailure::Case::noRPC ? QStringLiteral("no RPC") : QStringLiteral("invalid URL");
}

/// What became of a call, in words that a table can hold; "good" where it gave an answer.
template <class T>
QString outcome(const Task<T>& call) {
    try {
        await(call);
        return QStringLiteral("good");
    } catch (const NetworkFailure& failure) {
        return QLatin1String(QByteArray("http ") + QByteArray::number(failure.code()));
    } catch (const TransportFailure& failure) {
        return Fetch::words(failure);
    } catch (const FeeHistoryFailure& failure) {
        return words(failure);
    } catch (const JSONRPCFailure& failure) {
        return words(failure);
    } catch (const LiveGasFailure& failure) {
        return words(failure);
    } catch (const DecodingError&) {
        return QStringLiteral("decoding");
    }
}

L2Entry network(const std::optional<QStringList>& rpc) {
    L2Entry entry{};
    entry.name = QStringLiteral("Base");
    entry.rpc = rpc;
    return entry;
}

/// The last word of each log line: "ok" or "fail".
QStringList outcomes(const LogLines& log) {
    QStringList result;
    for (const QString& line : log.lines())
        result.append(line.section(QLatin1Char(' '), -1));
    return result;
}

} // namespace

class LiveGasClientTest final : public QObject {
    Q_OBJECT

    StandInServer m_primary;
    StandInServer m_fallback;
    LiveGasClient m_client;

    QString address(const StandInServer& server, const QString& path = {}) const { return server.url(path).toString(); }

    L2Entry followed() const { return network(QStringList{address(m_primary), address(m_fallback)}); }

private Q_SLOTS:
    void init() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        TestConfig::setEthereumRPCURLs(address(m_primary), address(m_fallback));
        m_primary.on("/", StandInAnswer::ok(RPCAnswers::feeHistory));
        m_fallback.on("/", StandInAnswer::ok(RPCAnswers::feeHistory));
        m_primary.clearRequests();
        m_fallback.clearRequests();
    }

    void theQuestionIsAPostToTheRootOfTheFirstEndpoint() {
        QCOMPARE(await(m_client.ethereum()), goodQuote);
        QCOMPARE(m_primary.requests().size(), 1);
        const StandInRequest& request = m_primary.requests().constFirst();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.target, QByteArray("/"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(request.header("User-Agent"), QByteArray("torvane/0.3.0 (macOS)"));
        QCOMPARE(request.body, QByteArray(R"({"jsonrpc":"2.0","id":1,"method":"eth_feeHistory",)"
                                          R"("params":["0x14","latest",[15,50,90]]})"));
        QVERIFY(m_fallback.requests().isEmpty());
    }

    void aNetworksQuestionHasNoParameters() {
        m_primary.on("/rpc/v1", StandInAnswer::ok(RPCAnswers::gasPrice));
        const L2Entry base = network(QStringList{address(m_primary, QStringLiteral("/rpc/v1"))});
        QCOMPARE(await(m_client.l2(base)), (LiveL2Quote{QStringLiteral("Base"), 0.006}));
        QCOMPARE(m_primary.requests().constFirst().body,
                 QByteArray(R"({"jsonrpc":"2.0","id":1,"method":"eth_gasPrice","params":[]})"));
    }

    void normalOdditiesAreFine_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("another id") << RPCAnswers::feeHistoryWith(R"("id":1)", R"("id":"77")");
        QTest::newRow("a whole ratio") << RPCAnswers::feeHistoryWith("[0.5]", "[1]");
        QTest::newRow("more percentiles") << RPCAnswers::feeHistoryWith(R"("0x26be3680"]])", R"("0x26be3680","0x1"]])");
        QTest::newRow("blanks") << RPCAnswers::feeHistoryWith(",", " ,\r\n\t") + "\n";
    }

    void normalOdditiesAreFine() {
        QFETCH(QByteArray, body);
        m_primary.on("/", StandInAnswer::ok(body));
        QCOMPARE(await(m_client.ethereum()), goodQuote);
        QVERIFY(m_fallback.requests().isEmpty());
    }

    void aBlockThatNobodyTippedInIsFine() {
        m_primary.on("/", StandInAnswer::ok(RPCAnswers::feeHistoryWith(R"(["0x8f0d180","0x14dc9380","0x26be3680"])",
                                                                       R"(["0x0","0x0","0x0"])")));
        QCOMPARE(await(m_client.ethereum()), (LiveGasQuote{12, 12, 12, 12, 6}));
    }

    void afterABadFeeHistoryTheNextEndpointIsAsked_data() {
        QTest::addColumn<QByteArray>("body");
        for (const auto& [name, body] : RPCAnswers::badFeeHistories())
            QTest::newRow(name) << body;
        QTest::newRow("a block number that overflows")
            << QByteArray(R"({"result":{"oldestBlock":"0xffffffffffffffff","reward":[["0x1","0x1","0x1"],)"
                          R"(["0x1","0x1","0x1"]],"baseFeePerGas":["0x1","0x1","0x1"],"gasUsedRatio":[0,0]}})");
    }

    void afterABadFeeHistoryTheNextEndpointIsAsked() {
        QFETCH(QByteArray, body);
        m_primary.on("/", StandInAnswer::ok(body));
        QCOMPARE(await(m_client.ethereum()), goodQuote);
        QCOMPARE(m_primary.requests().size(), 1);
        QCOMPARE(m_fallback.requests().size(), 1);
    }

    void afterABadGasPriceTheNextEndpointIsAsked_data() {
        QTest::addColumn<QByteArray>("body");
        for (const auto& [name, body] : RPCAnswers::badGasPrices())
            QTest::newRow(name) << body;
    }

    void afterABadGasPriceTheNextEndpointIsAsked() {
        QFETCH(QByteArray, body);
        m_primary.on("/", StandInAnswer::ok(body));
        m_fallback.on("/", StandInAnswer::ok(RPCAnswers::gasPrice));
        QCOMPARE(await(m_client.l2(followed())).gasPriceGwei, 0.006);
        QCOMPARE(m_primary.requests().size(), 1);
        QCOMPARE(m_fallback.requests().size(), 1);
    }

    void afterABadExchangeTheNextEndpointIsAsked_data() {
        using Ending = StandInAnswer::Ending;
        const StandInAnswer good = StandInAnswer::ok(RPCAnswers::feeHistory);
        QTest::addColumn<StandInAnswer>("answer");
        QTest::newRow("unavailable") << StandInAnswer::status(503, RPCAnswers::feeHistory);
        QTest::newRow("rate limit") << StandInAnswer::status(429, RPCAnswers::error("-32005", "slow down"));
        QTest::newRow("forbidden") << StandInAnswer::status(403, "<html>Just a moment...</html>");
        QTest::newRow("no content") << StandInAnswer::status(204);
        QTest::newRow("moved") << StandInAnswer::redirect(301, "/elsewhere");
        QTest::newRow("truncated") << good.cutShort(100, Ending::abruptClose);
        QTest::newRow("reset") << good.cutShortInHead(10, Ending::reset);
        QTest::newRow("closed without a word") << good.cutShortInHead(0, Ending::closeNotify);
        QTest::newRow("too large") << StandInAnswer::ok(RPCAnswers::feeHistory + QByteArray(rpcBodyLimit, ' '));
        QTest::newRow("endless") << StandInAnswer::endlessBody();
    }

    void afterABadExchangeTheNextEndpointIsAsked() {
        QFETCH(StandInAnswer, answer);
        m_primary.on("/", answer);
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(await(m_client.ethereum()), goodQuote);
        QCOMPARE(m_fallback.requests().size(), 1);
        // An empty answer is a good one as far as HTTP goes.
        const QString first = answer.code == 204 ? QStringLiteral("ok") : QStringLiteral("fail");
        QCOMPARE(outcomes(log), QStringList({first, QStringLiteral("ok")}));
    }

    void anEndpointThatIsDownIsPassedOver() {
        m_primary.stop();
        QCOMPARE(await(m_client.ethereum()), goodQuote);
        m_primary.start();
    }

    void eachCallStartsAgainAtTheFirstEndpoint() {
        m_primary.on("/", StandInAnswer::status(503));
        for (int calls = 1; calls <= 3; ++calls) {
            QCOMPARE(await(m_client.ethereum()), goodQuote);
            QCOMPARE(m_primary.requests().size(), calls);
            QCOMPARE(m_fallback.requests().size(), calls);
        }
    }

    void theLastErrorIsThrownAsItCame_data() {
        QTest::addColumn<StandInAnswer>("first");
        QTest::addColumn<StandInAnswer>("second");
        QTest::addColumn<QString>("outcome");
        const StandInAnswer remote = StandInAnswer::ok(RPCAnswers::error("-32005", "slow down"));
        const StandInAnswer busy = StandInAnswer::status(503);
        const StandInAnswer limited = StandInAnswer::status(429, RPCAnswers::error("-32005", "slow down"));
        const StandInAnswer empty = StandInAnswer::ok(R"({"result":null})");
        const StandInAnswer lengths = StandInAnswer::ok(RPCAnswers::feeHistoryWith(",\"0x343776500\"", ""));
        const StandInAnswer reward = StandInAnswer::ok(RPCAnswers::feeHistoryWith(",\"0x26be3680\"", ""));
        QTest::newRow("http") << remote << busy << QStringLiteral("http 503");
        QTest::newRow("remote") << busy << remote << QStringLiteral("remote: slow down");
        QTest::newRow("an error with its status") << remote << limited << QStringLiteral("http 429");
        QTest::newRow("no result") << busy << empty << QStringLiteral("no result");
        QTest::newRow("lengths") << busy << lengths << QStringLiteral("lengths");
        QTest::newRow("reward") << lengths << reward << QStringLiteral("reward");
        QTest::newRow("page") << reward << StandInAnswer::ok("<html>") << QStringLiteral("decoding");
        QTest::newRow("redirect") << remote << StandInAnswer::redirect(308, "/elsewhere") << QStringLiteral("http 308");
    }

    void theLastErrorIsThrownAsItCame() {
        QFETCH(StandInAnswer, first);
        QFETCH(StandInAnswer, second);
        m_primary.on("/", first);
        m_fallback.on("/", second);
        QTEST(outcome(m_client.ethereum()), "outcome");
        QCOMPARE(m_primary.requests().size(), 1);
        QCOMPARE(m_fallback.requests().size(), 1); // Redirects lead nowhere.
    }

    /// The one test that waits for the real limit.
    void anEndpointThatStallsForTenSecondsHasTimedOut() {
        m_primary.on("/", StandInAnswer::ok(RPCAnswers::error("-32005", "slow down")));
        m_fallback.on("/", StandInAnswer::ok(RPCAnswers::feeHistory).cutShort(40, StandInAnswer::Ending::silence));
        QCOMPARE(outcome(m_client.ethereum()), QStringLiteral("timed out"));
    }

    void anAddressWithoutTLSIsATransportFailureWithItsLogLine() {
        const LogLines log("org.velisk.Torvane.net");
        TestConfig::setEthereumRPCURLs(address(m_primary), QStringLiteral("http://localhost:1/"));
        m_primary.on("/", StandInAnswer::status(503));
        QCOMPARE(outcome(m_client.ethereum()), QStringLiteral("not secure"));
        QCOMPARE(outcomes(log), QStringList({QStringLiteral("fail"), QStringLiteral("fail")}));
        QVERIFY(log.lines().last().startsWith(QStringLiteral("info: method=POST host=localhost bytes=0 ms=")));
    }

    void withoutEndpointsNobodyIsAsked() {
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(outcome(m_client.l2(network(std::nullopt))), QStringLiteral("no RPC"));
        QCOMPARE(outcome(m_client.l2(network(QStringList()))), QStringLiteral("no RPC"));
        QVERIFY(log.lines().isEmpty());
    }

    void whatIsNoAddressIsNotAsked_data() {
        QTest::addColumn<QString>("address");
        for (const char* address : {"", "not an address", "localhost:8545", "/rpc", "//localhost/", "https://",
                                    "https:///rpc", "https://local host/", "https://localhost:port/", "https://[::1/"})
            QTest::newRow(*address ? address : "empty") << QString::fromLatin1(address);
    }

    void whatIsNoAddressIsNotAsked() {
        QFETCH(QString, address);
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(outcome(m_client.l2(network(QStringList(address)))), QStringLiteral("invalid URL"));
        QVERIFY(log.lines().isEmpty());
        m_fallback.on("/", StandInAnswer::ok(RPCAnswers::gasPrice));
        QCOMPARE(outcome(m_client.l2(network(QStringList{address, m_fallback.url({}).toString()}))),
                 QStringLiteral("good"));
    }

    void bothCallsMayRunAtOnce() {
        m_primary.on("/l2", StandInAnswer::ok(RPCAnswers::gasPrice));
        const Task<LiveGasQuote> ethereum = m_client.ethereum();
        const Task<LiveL2Quote> l2 = m_client.l2(network(QStringList(address(m_primary, QStringLiteral("/l2")))));
        ethereum.start();
        QCOMPARE(await(l2).gasPriceGwei, 0.006);
        QTRY_VERIFY_WITH_TIMEOUT(ethereum.isDone(), 30'000);
        QCOMPARE(ethereum.result(), goodQuote);
    }

    void aCallThatIsDroppedEndsItsConnection() {
        NetworkClient::dropPooledConnections();
        m_primary.on("/", StandInAnswer::silent());
        {
            const Task<LiveGasQuote> call = m_client.ethereum();
            call.start();
            QTRY_COMPARE_WITH_TIMEOUT(m_primary.requests().size(), 1, 30'000);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_primary.openConnectionCount(), 0, 30'000);
        QVERIFY(m_fallback.requests().isEmpty());
    }
};

QTEST_GUILESS_MAIN(LiveGasClientTest)
#include "LiveGasClientTest.moc"

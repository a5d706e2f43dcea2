#include "Chain/NetworkClient.h"

#include "Support/LogLines.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <QRegularExpression>

#include <vector>

using namespace torvane;

namespace {

constexpr const char* category = "org.velisk.Torvane.net";

Task<> fetchTwice(Request first, Request second, QByteArray& into) {
    Task<QByteArray> one = NetworkClient::request(first);
    const QByteArray firstBody = co_await one;
    Task<QByteArray> two = NetworkClient::request(second);
    const QByteArray secondBody = co_await two;
    into = firstBody + secondBody;
}

Task<> fetchAndCancel(Request request, std::vector<std::unique_ptr<Fetch>>& others, bool& isDone) {
    Task<QByteArray> one = NetworkClient::request(request);
    co_await one;
    others.clear();
    isDone = true;
}

struct Owner final {
    TaskScope scope;
};

Task<> fetchAndDestroy(Request request, Owner* owner, bool& isDone, bool& isFurther) {
    Task<QByteArray> one = NetworkClient::request(request);
    co_await one;
    isDone = true;
    delete owner; // And with it the scope that holds this very frame.
    Task<QByteArray> two = NetworkClient::request(request);
    co_await two;
    isFurther = true;
}

/// The milliseconds differ from run to run: the rest of a line does not.
QStringList withoutTimes(QStringList lines) {
    static const QRegularExpression time(QStringLiteral(" ms=\\d+ "));
    return lines.replaceInStrings(time, QStringLiteral(" ms=N "));
}

} // namespace

class NetworkClientTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;

    QUrl url(const char* path) const { return m_server.url(QLatin1String(path)); }

private Q_SLOTS:
    void initTestCase() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_server.on("/", StandInAnswer::ok("hello"));
        m_server.on("/long", StandInAnswer::ok(QByteArray(300000, 'x')));
        m_server.on("/silent", StandInAnswer::silent());
    }

    void init() { m_server.clearRequests(); }

    void anAnswerIsASuccessByItsStatus_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QString>("line");
        const auto row = [](int status, const char* body, const char* outcome, const char* line) {
            QTest::addRow("%d", status) << status << QByteArray(body) << QString::fromLatin1(outcome)
                                        << QString::fromLatin1(line);
        };
        row(200, "abc", "\"abc\"", "info: method=GET host=localhost bytes=3 ms=N ok");
        row(204, "", "\"\"", "info: method=GET host=localhost bytes=0 ms=N ok");
        row(299, "late", "\"late\"", "info: method=GET host=localhost bytes=4 ms=N ok");
        row(300, "which", "http 300", "info: method=GET host=localhost bytes=5 ms=N fail");
        row(304, "", "http 304", "info: method=GET host=localhost bytes=0 ms=N fail");
        row(404, "nothing here", "http 404", "info: method=GET host=localhost bytes=12 ms=N fail");
        row(429, "slow down", "http 429", "info: method=GET host=localhost bytes=9 ms=N fail");
        row(500, "", "http 500", "info: method=GET host=localhost bytes=0 ms=N fail");
    }

    void anAnswerIsASuccessByItsStatus() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, outcome);
        QFETCH(QString, line);
        m_server.on("/status", StandInAnswer::status(status, body));
        const LogLines log(category);
        QCOMPARE(Fetch::outcomeOf(url("/status")), outcome);
        QCOMPARE(withoutTimes(log.lines()), QStringList(line));
    }

    void aRequestThatNeverGetsAnAnswerIsLoggedWithoutBytes() {
        const LogLines log(category);
        QCOMPARE(Fetch::outcomeOf(QUrl(QStringLiteral("https://localhost:1/"))), QStringLiteral("connection 7"));
        QCOMPARE(withoutTimes(log.lines()),
                 QStringList(QStringLiteral("info: method=GET host=localhost bytes=0 ms=N fail")));
    }

    void aHostThatIsMissingIsLoggedAsUnknown() {
        const LogLines log(category);
        QCOMPARE(Fetch::outcomeOf(QUrl(QStringLiteral("https:///snapshot.json"))), QStringLiteral("not secure"));
        QCOMPARE(withoutTimes(log.lines()),
                 QStringList(QStringLiteral("info: method=GET host=unknown bytes=0 ms=N fail")));
    }

    void theMethodIsLoggedAsSent() {
        const LogLines log(category);
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/"), .method = "POST", .body = "{}"}),
                 QStringLiteral("\"hello\""));
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/"), .method = "HEAD"}), QStringLiteral("\"\""));
        QCOMPARE(withoutTimes(log.lines()),
                 QStringList({QStringLiteral("info: method=POST host=localhost bytes=5 ms=N ok"),
                              QStringLiteral("info: method=HEAD host=localhost bytes=0 ms=N ok")}));
    }

    void aCancelledRequestIsLoggedAsAFailure() {
        const LogLines log(category);
        Fetch fetch(Request{.url = url("/silent")});
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        fetch.cancel();
        QCOMPARE(withoutTimes(log.lines()),
                 QStringList(QStringLiteral("info: method=GET host=localhost bytes=0 ms=N fail")));
        QVERIFY(!fetch.isDone());
    }

    void nothingIsLoggedWhereTheLevelIsOff() {
        const LogLines log(category);
        QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false"));
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        QLoggingCategory::setFilterRules({});
        QCOMPARE(log.lines(), QStringList());
    }

    void theUserAgentIsOursWhateverTheCallerSet() {
        const Request request{.url = url("/"), .headers = {{"user-agent", "other/1"}, {"User-Agent", "third/2"}}};
        QCOMPARE(Fetch::outcomeOf(request), QStringLiteral("\"hello\""));
        QCOMPARE(m_server.requests().first().header("User-Agent"), QByteArray("torvane/0.3.0 (macOS)"));
    }

    void aPostArrivesAsItIsWithoutFieldsOfItsOwn() {
        const QByteArray body = QByteArray("\0binary\xff", 8) + QByteArray(5000, 'b');
        const Request request{.url = url("/?q=1#part"),
                              .method = "POST",
                              .body = body,
                              .headers = {{"Content-Type", "application/json"}, {"X-Empty", ""}}};
        QCOMPARE(Fetch::outcomeOf(request), QStringLiteral("\"hello\""));
        const StandInRequest& seen = m_server.requests().first();
        QCOMPARE(seen.method, QByteArray("POST"));
        QCOMPARE(seen.target, QByteArray("/?q=1"));
        QCOMPARE(seen.body, body);
        QCOMPARE(seen.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(seen.header("Accept-Encoding"), QByteArray("gzip"));
        QVERIFY(!seen.header("X-Empty").isNull());
        QVERIFY(seen.header("Expect").isNull());
    }

    void aPostWithoutATypeIsNotCalledAForm() {
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/"), .method = "POST"}), QStringLiteral("\"hello\""));
        QVERIFY(m_server.requests().first().header("Content-Type").isNull());
        QCOMPARE(m_server.requests().first().header("Content-Length"), QByteArray("0"));
    }

    void aRequestThatWouldSmuggleLinesIsNotSent_data() {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("line break in a value") << QByteArray("GET") << QByteArray("A") << QByteArray("b\r\nC: d");
        QTest::newRow("colon in a name") << QByteArray("GET") << QByteArray("A:b") << QByteArray("c");
        QTest::newRow("empty name") << QByteArray("GET") << QByteArray("") << QByteArray("c");
        QTest::newRow("blank in the method") << QByteArray("GET /x") << QByteArray("A") << QByteArray("c");
    }

    void aRequestThatWouldSmuggleLinesIsNotSent() {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, value);
        const Request request{.url = url("/"), .method = method, .headers = {{name, value}}};
        QCOMPARE(Fetch::outcomeOf(request), QStringLiteral("invalid request"));
        QVERIFY(m_server.requests().isEmpty());
    }

    void compressedAndChunkedBodiesArriveWhole_data() {
        QTest::addColumn<bool>("isGzipped");
        QTest::addColumn<bool>("isChunked");
        QTest::newRow("plain") << false << false;
        QTest::newRow("gzip") << true << false;
        QTest::newRow("chunked") << false << true;
        QTest::newRow("gzip in chunks") << true << true;
    }

    void compressedAndChunkedBodiesArriveWhole() {
        QFETCH(bool, isGzipped);
        QFETCH(bool, isChunked);
        const QByteArray body = QByteArray("0123456789").repeated(2000);
        StandInAnswer answer = StandInAnswer::ok(body);
        answer = isGzipped ? answer.gzipped() : answer;
        m_server.on("/encoded", isChunked ? answer.chunked() : answer);
        QCOMPARE(Fetch::outcomeOf(url("/encoded")), QLatin1Char('"') + QString::fromLatin1(body) + QLatin1Char('"'));
    }

    void manyRequestsAtOnceAllEnd() {
        std::vector<std::unique_ptr<Fetch>> fetches;
        for (int i = 0; i < 30; ++i)
            fetches.push_back(std::make_unique<Fetch>(Request{.url = url(i % 2 == 0 ? "/" : "/long")}));
        for (const auto& fetch : fetches)
            QTRY_VERIFY_WITH_TIMEOUT(fetch->outcome().startsWith(QLatin1Char('"')), 60000);
    }

    void startingARequestDoesNotWaitForIt() {
        const Fetch fetch(Request{.url = url("/")});
        QVERIFY(!fetch.isDone());
        QTRY_COMPARE_WITH_TIMEOUT(fetch.outcome(), QStringLiteral("\"hello\""), 30000);
    }

    void cancellingManyRequestsEndsTheirConnections() {
        NetworkClient::dropPooledConnections();
        std::vector<std::unique_ptr<Fetch>> fetches;
        for (int i = 0; i < 60; ++i)
            fetches.push_back(std::make_unique<Fetch>(Request{.url = url("/silent")}));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 60, 60000);
        fetches.clear();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 60000);
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
    }

    void requestsMayBeCancelledBeforeAnythingHappened() {
        for (int i = 0; i < 60; ++i)
            const Fetch fetch(Request{.url = url("/")});
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        QCOMPARE(m_server.requests().size(), 1);
    }

    void resumedCodeMayStartTheNextRequest() {
        TaskScope scope;
        QByteArray bodies;
        scope.run(fetchTwice(Request{.url = url("/")}, Request{.url = url("/")}, bodies));
        QTRY_COMPARE_WITH_TIMEOUT(bodies, QByteArray("hellohello"), 30000);
    }

    void resumedCodeMayCancelOtherRequests() {
        std::vector<std::unique_ptr<Fetch>> others;
        for (int i = 0; i < 12; ++i)
            others.push_back(std::make_unique<Fetch>(Request{.url = url(i % 2 == 0 ? "/" : "/silent")}));
        TaskScope scope;
        bool isDone = false;
        scope.run(fetchAndCancel(Request{.url = url("/")}, others, isDone));
        QTRY_VERIFY_WITH_TIMEOUT(isDone, 30000);
        QVERIFY(others.empty());
    }

    void resumedCodeMayEndItsOwner() {
        const LogLines log(category);
        auto* owner = new Owner;
        bool isDone = false;
        bool isFurther = false;
        owner->scope.run(fetchAndDestroy(Request{.url = url("/")}, owner, isDone, isFurther));
        QTRY_VERIFY_WITH_TIMEOUT(isDone, 30000);
        QCOMPARE(withoutTimes(log.lines()),
                 QStringList({QStringLiteral("info: method=GET host=localhost bytes=5 ms=N ok"),
                              QStringLiteral("info: method=GET host=localhost bytes=0 ms=N fail")}));
        QVERIFY(!isFurther);
    }
};

QTEST_GUILESS_MAIN(NetworkClientTest)
#include "NetworkClientTest.moc"

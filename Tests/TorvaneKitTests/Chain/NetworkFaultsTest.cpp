#include "Chain/HTTPMessage.h"
#include "Chain/NetworkClient.h"
#include "Chain/NetworkLimits.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <chrono>
#include <memory>
#include <vector>

using namespace torvane;
using namespace std::chrono_literals;
using Ending = StandInAnswer::Ending;

namespace {

const QByteArray plenty = QByteArray("0123456789").repeated(20000);

/// More than the limit once it is decoded, far less on the wire.
StandInAnswer bomb() {
    return StandInAnswer::ok(QByteArray(qsizetype{16} * 1024 * 1024, '\0')).gzipped();
}

} // namespace

Q_DECLARE_METATYPE(torvane::StandInAnswer)

class NetworkFaultsTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;

    QUrl url(const char* path) const { return m_server.url(QLatin1String(path)); }

    Request impatient(const char* path) const { return {.url = url(path), .timeout = 300ms}; }

private Q_SLOTS:
    void initTestCase() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_server.on("/", StandInAnswer::ok("hello"));
        m_server.on("/silent", StandInAnswer::silent());
    }

    void init() { m_server.clearRequests(); }

    void cleanup() { NetworkLimits::totalDeadline = 60s; }

    void aServerThatMisbehavesIsAFailure_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* name, const StandInAnswer& answer, const char* outcome) {
            QTest::newRow(name) << answer << QString::fromLatin1(outcome);
        };
        const StandInAnswer ok = StandInAnswer::ok(plenty);
        row("nothing, then a close", ok.cutShortInHead(0, Ending::closeNotify), "connection 52");
        row("nothing, then a reset", ok.cutShortInHead(0, Ending::reset), "connection 56");
        row("half a head, then a close", ok.cutShortInHead(20, Ending::closeNotify), "connection 52");
        row("half a body, then an orderly close", ok.cutShort(5000, Ending::closeNotify), "connection 18");
        row("half a body, then an abrupt close", ok.cutShort(5000, Ending::abruptClose), "connection 18");
        row("half a body, then a reset", ok.cutShort(5000, Ending::reset), "connection 56");
        row("chunks without the last", ok.chunked().cutShort(5000, Ending::closeNotify), "connection 18");
        row("a body without end", StandInAnswer::endlessBody(), "too large");
        row("a head without end", StandInAnswer::endlessHead(), "too large");
        row("silence in a field", StandInAnswer::raw("HTTP/1.1 200 OK\r\nX: "), "timed out");
        row("a gzip bomb", bomb(), "too large");
        row("no gzip where it says so", ok.header("Content-Encoding", "gzip"), "connection 61");
        row("an encoding nobody asked for", ok.header("Content-Encoding", "br"), "connection 61");
        row("garbage", StandInAnswer::raw("\x01\x02garbage\r\n\r\n").cutShortInHead(12, Ending::closeNotify), "http 0");
        row("another protocol", StandInAnswer::raw("220 mail.example ESMTP\r\n"), "http 0");
        row("a status that is no number", StandInAnswer::raw("HTTP/1.1 abc OK\r\n\r\n"), "http 0");
        const auto then = [](const QByteArray& bytes) {
            return StandInAnswer::raw(bytes).cutShortInHead(bytes.size(), Ending::closeNotify);
        };
        row("a status out of range", then("HTTP/1.1 999 No\r\nContent-Length: 0\r\n\r\n"), "http 999");
        row("a switch nobody asked for", then("HTTP/1.1 101 Switching\r\n\r\n"), "connection 52");
        row("interim answers without the final one", StandInAnswer::raw("HTTP/1.1 103 Hints\r\n\r\n"), "timed out");
        row("interim answers first", then("HTTP/1.1 103 Hints\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx"),
            "\"x\"");
        row("silence", StandInAnswer::silent(), "timed out");
        row("silence in the head", ok.cutShortInHead(20, Ending::silence), "timed out");
        row("silence in the body", ok.cutShort(5000, Ending::silence), "timed out");
    }

    void aServerThatMisbehavesIsAFailure() {
        QFETCH(StandInAnswer, answer);
        QFETCH(QString, outcome);
        NetworkClient::dropPooledConnections();
        m_server.on("/fault", answer);
        const auto patience = outcome == QLatin1String("timed out") ? 300ms : 30000ms;
        const Request request{.url = url("/fault"), .timeout = patience, .bodyLimit = rpcBodyLimit};
        QCOMPARE(Fetch::outcomeOf(request), outcome);
        // The next request is not harmed.
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
    }

    void aBodyOfExactlyTheLimitIsTaken() {
        m_server.on("/limit", StandInAnswer::ok("12345"));
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/limit"), .bodyLimit = 5}), QStringLiteral("\"12345\""));
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/limit"), .bodyLimit = 4}), QStringLiteral("too large"));
    }

    void anAnswerThatKeepsComingIsNotIdle_data() {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("in the body") << QByteArray("/body");
        QTest::newRow("in the head") << QByteArray("/head");
    }

    void anAnswerThatKeepsComingIsNotIdle() {
        QFETCH(QByteArray, path);
        // Three seconds in all; each piece much sooner than the idle limit.
        m_server.on("/body", StandInAnswer::ok(QByteArray(600, 'b')).dripped(4, 20ms));
        StandInAnswer head = StandInAnswer::ok(QByteArray(600, 'b'));
        for (int i = 0; i < 150; ++i)
            head = head.header("X-" + QByteArray::number(i), "v");
        m_server.on("/head", head.dripped(10, 20ms));
        const Request request{.url = url(path.constData()), .timeout = 2s};
        QCOMPARE(Fetch::outcomeOf(request), QLatin1Char('"') + QString(600, u'b') + QLatin1Char('"'));
    }

    void anAnswerThatDripsForeverEndsAtTheDeadline_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::newRow("in the body") << StandInAnswer::ok(plenty).dripped(1, 20ms);
        QTest::newRow("in the head") << StandInAnswer::ok({}).header("X", plenty).dripped(40, 20ms);
    }

    void anAnswerThatDripsForeverEndsAtTheDeadline() {
        QFETCH(StandInAnswer, answer);
        m_server.on("/drip", answer);
        NetworkLimits::totalDeadline = 700ms;
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/drip"), .timeout = 20s}), QStringLiteral("timed out"));
    }

    void aRedirectDoesNotStartTheDeadlineAnew() {
        m_server.on("/circle", StandInAnswer::redirect(302, "/circle").dripped(10, 20ms));
        NetworkLimits::totalDeadline = 700ms;
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/circle"), .timeout = 20s}), QStringLiteral("timed out"));
    }

    void aTimeOutDropsAllPooledConnections() {
        NetworkClient::dropPooledConnections();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
        const Fetch one(Request{.url = url("/")});
        const Fetch two(Request{.url = url("/")});
        QTRY_VERIFY_WITH_TIMEOUT(one.isDone() && two.isDone(), 30000);
        QVERIFY(m_server.openConnectionCount() > 0);
        QCOMPARE(Fetch::outcomeOf(impatient("/silent")), QStringLiteral("timed out"));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
    }

    void aServerThatClosesIdleConnectionsIsReachedAgainInTheSameRequest_data() {
        QTest::addColumn<int>("ending");
        QTest::addColumn<QByteArray>("method");
        QTest::newRow("orderly, GET") << int(Ending::closeNotify) << QByteArray("GET");
        QTest::newRow("orderly, POST") << int(Ending::closeNotify) << QByteArray("POST");
        QTest::newRow("abruptly, GET") << int(Ending::abruptClose) << QByteArray("GET");
        QTest::newRow("abruptly, POST") << int(Ending::abruptClose) << QByteArray("POST");
        QTest::newRow("by a reset, GET") << int(Ending::reset) << QByteArray("GET");
        QTest::newRow("by a reset, POST") << int(Ending::reset) << QByteArray("POST");
    }

    void aServerThatClosesIdleConnectionsIsReachedAgainInTheSameRequest() {
        QFETCH(int, ending);
        QFETCH(QByteArray, method);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(Fetch::outcomeOf(Request{.url = url("/"), .method = method}), QStringLiteral("\"hello\""));
            m_server.closeConnections(static_cast<Ending>(ending));
            QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
        }
    }

    void aServerThatClosesAfterEachAnswerIsReachedEachTime() {
        m_server.on("/closing", StandInAnswer::ok("bye").closing());
        for (int i = 0; i < 5; ++i)
            QCOMPARE(Fetch::outcomeOf(url("/closing")), QStringLiteral("\"bye\""));
    }

    void aRestartedServerIsReachedAgain() {
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        m_server.stop();
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("connection 7"));
        m_server.start();
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
    }

    void addressesThatAreNotHTTPSAreRefused_data() {
        QTest::addColumn<QUrl>("address");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* address, const char* outcome) {
            QTest::newRow(address) << QUrl(QString::fromLatin1(address)) << QString::fromLatin1(outcome);
        };
        row("http://localhost/", "not secure");
        row("file:///etc/hostname", "not secure");
        row("ftp://localhost/", "not secure");
        row("localhost", "not secure");
        row("https://", "not secure");
        row("https://local host/", "invalid request");
        row("", "invalid request");
    }

    void addressesThatAreNotHTTPSAreRefused() {
        QFETCH(QUrl, address);
        QFETCH(QString, outcome);
        QCOMPARE(Fetch::outcomeOf(address), outcome);
    }

    void aGetIsRedirectedToHTTPSAlone_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("location");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* name, int status, const QByteArray& location, const char* outcome) {
            QTest::newRow(name) << status << location << QString::fromLatin1(outcome);
        };
        row("301 to a path", 301, "/", "\"hello\"");
        row("302 to an address", 302, url("/").toEncoded(), "\"hello\"");
        row("303", 303, "/", "\"hello\"");
        row("307 relative", 307, "./?a=b", "\"hello\"");
        row("308 without scheme", 308, "//" + m_server.host().toLatin1() + "/", "\"hello\"");
        row("to nothing there", 302, "/missing", "http 404");
        row("to http", 302, "http://" + m_server.host().toLatin1() + "/", "not secure");
        row("to a file", 302, "file:///etc/hostname", "not secure");
        row("to nowhere", 302, "https://", "not secure");
        row("to something unreadable", 302, "https://[::1/", "invalid request");
        row("without a target", 302, "", "http 302");
        row("to itself for ever", 301, "/redirect", "too many redirects");
        row("a status that does not redirect", 304, "/", "http 304");
        row("choices", 300, "/", "http 300");
    }

    void aGetIsRedirectedToHTTPSAlone() {
        QFETCH(int, status);
        QFETCH(QByteArray, location);
        QFETCH(QString, outcome);
        m_server.on("/redirect", StandInAnswer::redirect(status, location));
        QCOMPARE(Fetch::outcomeOf(url("/redirect")), outcome);
        QVERIFY(m_server.requests().size() <= NetworkLimits::mostRedirects + 1);
    }

    void aPostIsNeverRedirected_data() {
        QTest::addColumn<int>("status");
        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("%d", status) << status;
    }

    void aPostIsNeverRedirected() {
        QFETCH(int, status);
        m_server.on("/redirect", StandInAnswer::redirect(status, "/"));
        const Request post{.url = url("/redirect"), .method = "POST", .body = "{}"};
        QCOMPARE(Fetch::outcomeOf(post), QLatin1String("http ") + QString::fromLatin1(QByteArray::number(status)));
        QCOMPARE(m_server.requests().size(), 1);
    }

    void credentialsStayWithTheServerThatTheyAreFor() {
        StandInServer other;
        other.on("/", StandInAnswer::ok("other"));
        m_server.on("/away", StandInAnswer::redirect(302, other.url(QStringLiteral("/")).toEncoded()));
        m_server.on("/near", StandInAnswer::redirect(302, "/"));
        const HeaderFields headers{{"authorization", "Bearer secret"}, {"Cookie", "a=b"}, {"X-Other", "c"}};
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/near"), .headers = headers}), QStringLiteral("\"hello\""));
        QCOMPARE(m_server.requests().last().header("Authorization"), QByteArray("Bearer secret"));
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/away"), .headers = headers}), QStringLiteral("\"other\""));
        QVERIFY(other.requests().last().header("Authorization").isNull());
        QVERIFY(other.requests().last().header("Cookie").isNull());
        QCOMPARE(other.requests().last().header("X-Other"), QByteArray("c"));
    }

    /// libcurl takes these two for whole; only a strict reader of the body finds out.
    void whatOnlyTheBodyCanTellIsASuccess() {
        m_server.on("/open", StandInAnswer::ok("{\"half\"").withoutLength().cutShort(7, Ending::abruptClose));
        QCOMPARE(Fetch::outcomeOf(url("/open")), QStringLiteral("\"{\"half\"\""));
        const QByteArray whole = gzip(plenty);
        m_server.on("/gzip", StandInAnswer::ok(whole.first(whole.size() / 2)).header("Content-Encoding", "gzip"));
        QVERIFY(Fetch::outcomeOf(url("/gzip")).startsWith(QStringLiteral("\"01234")));
    }
};

QTEST_GUILESS_MAIN(NetworkFaultsTest)
#include "NetworkFaultsTest.moc"

#include "Chain/NetworkClient.h"
#include "Chain/ResponseCache.h"
#include "Support/Clock.h"
#include "Support/LogLines.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <QRegularExpression>

using namespace torvane;

namespace {

QDateTime g_now(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC);

QDateTime setTime() {
    return g_now;
}

/// Advances the clock, or sets it back.
void pass(int seconds) {
    g_now = g_now.addSecs(seconds);
}

} // namespace

class HTTPCacheTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;
    QByteArray m_path;
    int m_count = 0;

    QUrl url() const { return m_server.url(QString::fromLatin1(m_path)); }

    Request revalidation() const { return {.url = url(), .cachePolicy = CachePolicy::revalidate}; }

    qsizetype asked() const { return m_server.requests().size(); }

    StandInRequest last() const { return m_server.requests().last(); }

    /// Serves versions: answers 304 to the tag of the one that is served.
    void serve(const QByteArray& body, const QByteArray& cacheControl, const QByteArray& tag) {
        m_server.on(m_path, [=](const StandInRequest& request) {
            const bool isKnown = !tag.isEmpty() && request.header("If-None-Match") == tag;
            StandInAnswer answer = isKnown ? StandInAnswer::status(304) : StandInAnswer::ok(body);
            if (!tag.isEmpty())
                answer = answer.header("ETag", tag);
            return cacheControl.isEmpty() ? answer : answer.header("Cache-Control", cacheControl);
        });
    }

private Q_SLOTS:
    void initTestCase() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        Clock::setSource(&setTime);
    }

    void cleanupTestCase() { Clock::setSource(nullptr); }

    /// Each case has an address of its own: nothing is remembered of it.
    void init() {
        m_path = "/document" + QByteArray::number(++m_count);
        m_server.clearRequests();
    }

    void aFreshAnswerIsDeliveredWithoutAsking() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        serve("two", "max-age=60", "\"2\"");
        pass(59);
        const LogLines log("org.velisk.Torvane.net");
        const Fetch fetch(Request{.url = url()});
        QVERIFY(!fetch.isDone()); // From memory too it comes later, never inside the call.
        QTRY_COMPARE_WITH_TIMEOUT(fetch.outcome(), QStringLiteral("\"one\""), 30000);
        QCOMPARE(asked(), 1);
        QCOMPARE(log.lines().size(), 1);
        static const QRegularExpression line(QStringLiteral("^info: method=GET host=localhost bytes=3 ms=\\d+ ok$"));
        QVERIFY(line.match(log.lines().first()).hasMatch());
    }

    void aStaleAnswerIsDeliveredOnceTheServerConfirmsIt() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        pass(60);
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 2);
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
        QVERIFY(log.lines().first().contains(QStringLiteral("bytes=3 ")));
        QVERIFY(log.lines().first().endsWith(QStringLiteral(" ok")));
        pass(59); // The confirmation made it fresh again.
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 2);
    }

    void aChangedAnswerReplacesTheRememberedOne() {
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        serve("two", {}, "\"2\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"two\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"two\""));
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"2\""));
    }

    void theLastModificationIsAskedAboutWhereThereIsNoTag() {
        const QByteArray date = "Thu, 01 Jan 2026 10:00:00 GMT";
        m_server.on(m_path, [date](const StandInRequest& request) {
            return request.header("If-Modified-Since") == date ? StandInAnswer::status(304)
                                                               : StandInAnswer::ok("x").header("Last-Modified", date);
        });
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(last().header("If-Modified-Since"), date);
        QVERIFY(last().header("If-None-Match").isNull());
    }

    void revalidationAsksWhateverIsFresh() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(Fetch::outcomeOf(revalidation()), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 2);
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
        QCOMPARE(last().header("Cache-Control"), QByteArray("no-cache"));
        serve("two", "max-age=60", "\"2\"");
        QCOMPARE(Fetch::outcomeOf(revalidation()), QStringLiteral("\"two\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"two\"")); // What it brought is remembered.
        QCOMPARE(asked(), 3);
    }

    void answersThatMayNotBeRemembered_data() {
        QTest::addColumn<StandInAnswer>("answer");
        const StandInAnswer ok = StandInAnswer::ok("x").header("ETag", "\"1\"");
        QTest::newRow("no-store") << ok.header("Cache-Control", "max-age=60, No-Store");
        QTest::newRow("no-store in a second field")
            << ok.header("Cache-Control", "max-age=60").header("cache-control", "no-store");
        QTest::newRow("varies by everything") << ok.header("Cache-Control", "max-age=60").header("Vary", "*");
        QTest::newRow("neither validator nor freshness") << StandInAnswer::ok("x");
        QTest::newRow("not 200") << StandInAnswer::status(203, "x").header("Cache-Control", "max-age=60");
        QTest::newRow("without a certain end")
            << ok.header("Cache-Control", "max-age=60").withoutLength().cutShort(1, StandInAnswer::Ending::closeNotify);
    }

    void answersThatMayNotBeRemembered() {
        QFETCH(StandInAnswer, answer);
        m_server.on(m_path, answer);
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(asked(), 2);
        QVERIFY(last().header("If-None-Match").isNull());
    }

    void answersThatMustBeConfirmedEachTime_data() {
        QTest::addColumn<QByteArray>("cacheControl");
        for (const char* value :
             {"", "no-cache", "max-age=60, no-cache", "no-cache=\"Set-Cookie\", max-age=60", "max-age=0", "max-age=abc",
              "max-age=-1", "max-age=", "max-age=60, max-age=0", "private"})
            QTest::newRow(value) << QByteArray(value);
    }

    void answersThatMustBeConfirmedEachTime() {
        QFETCH(QByteArray, cacheControl);
        serve("x", cacheControl, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(asked(), 2);
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
    }

    void anAgeThatTheAnswerBringsCounts() {
        m_server.on(m_path, StandInAnswer::ok("x").header("Cache-Control", "max-age=60").header("Age", "50"));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        pass(9);
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(asked(), 1);
        pass(1);
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(asked(), 2);
    }

    void anUnreadableAgeIsStale() {
        m_server.on(m_path, StandInAnswer::ok("x").header("Cache-Control", "max-age=60").header("Age", "young"));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"x\""));
        QCOMPARE(asked(), 2);
    }

    void anAnswerFromTheFutureIsStale() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        pass(-3600);
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 2);
        pass(10);
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\"")); // Confirmed by the clock as it is now.
        QCOMPARE(asked(), 2);
    }

    void whatTheCallerSendsTellsAnswersApart() {
        m_server.on(m_path, [](const StandInRequest& request) {
            return StandInAnswer::ok(request.header("Accept-Language")).header("Cache-Control", "max-age=60");
        });
        const Request german{.url = url(), .headers = {{"Accept-Language", "de"}}};
        const Request hindi{.url = url(), .headers = {{"Accept-Language", "hi"}}};
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(Fetch::outcomeOf(german), QStringLiteral("\"de\""));
            QCOMPARE(Fetch::outcomeOf(hindi), QStringLiteral("\"hi\""));
        }
        QCOMPARE(asked(), 2);
    }

    void aCallerWhoAsksHimselfGetsTheAnswerAsItIs() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        const Request own{.url = url(), .headers = {{"If-None-Match", "\"1\""}}};
        QCOMPARE(Fetch::outcomeOf(own), QStringLiteral("http 304"));
    }

    void aFailureLeavesTheRememberedAnswerAlone() {
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        m_server.on(m_path, StandInAnswer::status(503, "later"));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("http 503"));
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
    }

    void aConfirmationOfSomethingElseIsAFailureAndForgotten() {
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        m_server.on(m_path, StandInAnswer::status(304).header("ETag", "\"9\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("http 304"));
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QVERIFY(last().header("If-None-Match").isNull());
    }

    void aConfirmationMayNameTheTagWithoutItsWeakness() {
        m_server.on(m_path, StandInAnswer::ok("one").gzipped().header("ETag", "W/\"1\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        m_server.on(m_path, StandInAnswer::status(304).header("ETag", "\"1\""));
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
            QVERIFY(last().header("If-None-Match").endsWith("\"1\""));
        }
    }

    void aConfirmationMayForbidToRememberAnyLonger() {
        serve("one", {}, "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        serve("one", "no-store", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QVERIFY(last().header("If-None-Match").isNull());
    }

    void aWriteMakesTheRememberedAnswerDoubtful() {
        serve("one", "max-age=60", "\"1\"");
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(Fetch::outcomeOf(Request{.url = url(), .method = "POST"}), QStringLiteral("\"one\""));
        QCOMPARE(Fetch::outcomeOf(url()), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 3);
        QVERIFY(last().header("If-None-Match").isNull());
    }

    void aRedirectedAnswerIsRememberedForWhereItCameFrom() {
        serve("one", {}, "\"1\"");
        const QByteArray from = m_path + "/old";
        m_server.on(from, StandInAnswer::redirect(302, m_path).header("ETag", "\"r\""));
        const QUrl old = m_server.url(QString::fromLatin1(from));
        QCOMPARE(Fetch::outcomeOf(old), QStringLiteral("\"one\""));
        QCOMPARE(Fetch::outcomeOf(old), QStringLiteral("\"one\""));
        QCOMPARE(asked(), 4);
        QCOMPARE(last().header("If-None-Match"), QByteArray("\"1\""));
        QVERIFY(m_server.requests().at(2).header("If-None-Match").isNull());
    }

    void theAnswersUsedLongestAgoAreForgottenFirst() {
        ResponseCache cache(2, 100);
        const auto hop = [](const char* path) {
            return Hop{.url = QUrl(QLatin1String("https://a.example/") + QLatin1String(path)),
                       .method = "GET",
                       .body = {},
                       .headers = {},
                       .idleLimit = {},
                       .deadline = {},
                       .bodyLimit = 0};
        };
        const auto settle = [&](const char* path, qsizetype size) {
            const Answer answer{
                .status = 200, .headers = {{"ETag", "1"}, {"Content-Length", "1"}}, .body = QByteArray(size, 'x')};
            cache.settle(hop(path), std::nullopt, answer, g_now, g_now);
        };
        settle("a", 10);
        settle("b", 10);
        QVERIFY(cache.find(hop("a")));
        settle("c", 10);
        QVERIFY(!cache.find(hop("b")));
        QVERIFY(cache.find(hop("a")));
        QVERIFY(cache.find(hop("c")));
        settle("d", 95);
        QVERIFY(!cache.find(hop("a")));
        QVERIFY(!cache.find(hop("c")));
        QVERIFY(cache.find(hop("d")));
        settle("e", 101);
        QVERIFY(!cache.find(hop("e")));
        QVERIFY(cache.find(hop("d")));
    }
};

QTEST_GUILESS_MAIN(HTTPCacheTest)
#include "HTTPCacheTest.moc"

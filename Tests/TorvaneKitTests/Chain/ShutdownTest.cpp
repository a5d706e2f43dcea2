#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"
#include "TorvaneKitTests/Chain/StandInResolver.h"

#include <QTimer>

#include <memory>
#include <vector>

using namespace torvane;
using namespace std::chrono_literals;

namespace {

const QUrl unresolved(QStringLiteral("https://silent.stand-in.test/"));

int g_argc = 1;
char g_name[] = "ShutdownTest";
char* g_argv[] = {g_name, nullptr};

/// Counts the turns of the main loop.
class Turns final {
public:
    Turns() {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { ++m_count; });
        m_timer.start(1ms);
    }

    int count() const { return m_count; }

private:
    QTimer m_timer;
    int m_count = 0;
};

using Fetches = std::vector<std::unique_ptr<Fetch>>;

void quitFromTheLoop() {
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

} // namespace

/// Each case has an application object of its own, so that it can be ended with requests in flight.
class ShutdownTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca")); }

    void cleanup() {
        StandInResolver::release();
        QVERIFY(!StandInResolver::isTiredOfWaiting());
    }

    void theLoopTurnsWhileARequestOverADeadResolverTimesOut() {
        const QCoreApplication app(g_argc, g_argv);
        const Turns turns;
        const Fetch fetch(Request{.url = unresolved, .timeout = 300ms});
        QTRY_COMPARE_WITH_TIMEOUT(StandInResolver::waiting(), 1, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(fetch.outcome(), QStringLiteral("timed out"), 30000);
        // The resolver is silent still, and nobody waited for it.
        QCOMPARE(StandInResolver::waiting(), 1);
        const int then = turns.count();
        QVERIFY(then > 0);
        QTRY_VERIFY_WITH_TIMEOUT(turns.count() > then + 50, 30000);
        QCOMPARE(StandInResolver::waiting(), 1);
    }

    void theLoopTurnsAfterRequestsOverADeadResolverAreCancelled() {
        const QCoreApplication app(g_argc, g_argv);
        const Turns turns;
        Fetches fetches;
        for (int i = 0; i < 3; ++i)
            fetches.push_back(std::make_unique<Fetch>(Request{.url = unresolved}));
        QTRY_COMPARE_WITH_TIMEOUT(StandInResolver::waiting(), 3, 30000);
        fetches.clear();
        const int then = turns.count();
        QTRY_VERIFY_WITH_TIMEOUT(turns.count() > then + 50, 30000);
        QCOMPARE(StandInResolver::waiting(), 3);
    }

    void theApplicationEndsWhileTheResolverIsDead() {
        Fetches fetches;
        {
            const QCoreApplication app(g_argc, g_argv);
            fetches.push_back(std::make_unique<Fetch>(Request{.url = unresolved}));
            QTRY_COMPARE_WITH_TIMEOUT(StandInResolver::waiting(), 1, 30000);
            quitFromTheLoop();
        }
        QCOMPARE(StandInResolver::waiting(), 1);
        QVERIFY(!fetches.front()->isDone());
    }

    void theApplicationEndsWithTwelveRequestsInFlight_data() {
        QTest::addColumn<bool>("ownersGoFirst");
        QTest::newRow("owners go before it") << true;
        QTest::newRow("owners go after it") << false;
    }

    void theApplicationEndsWithTwelveRequestsInFlight() {
        QFETCH(bool, ownersGoFirst);
        Fetches fetches;
        {
            const QCoreApplication app(g_argc, g_argv);
            StandInServer server;
            server.on("/silent", StandInAnswer::silent());
            for (int i = 0; i < 12; ++i)
                fetches.push_back(std::make_unique<Fetch>(Request{.url = server.url(QStringLiteral("/silent"))}));
            QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 12, 30000);
            if (ownersGoFirst)
                fetches.clear();
            quitFromTheLoop();
        }
        for (const auto& fetch : fetches)
            QVERIFY(!fetch->isDone());
        fetches.clear();
    }

    void theApplicationEndsWithRequestsThatHaveHardlyBegun() {
        Fetches fetches;
        {
            const QCoreApplication app(g_argc, g_argv);
            for (int i = 0; i < 12; ++i)
                fetches.push_back(
                    std::make_unique<Fetch>(Request{.url = QUrl(QStringLiteral("https://localhost:1/"))}));
        }
        for (const auto& fetch : fetches)
            QVERIFY(!fetch->isDone());
    }

    void theNextApplicationHasASessionOfItsOwn() {
        for (int i = 0; i < 3; ++i) {
            const QCoreApplication app(g_argc, g_argv);
            StandInServer server;
            server.on("/", StandInAnswer::ok("hello"));
            QCOMPARE(Fetch::outcomeOf(server.url(QStringLiteral("/"))), QStringLiteral("\"hello\""));
        }
    }
};

QTEST_APPLESS_MAIN(ShutdownTest)
#include "ShutdownTest.moc"

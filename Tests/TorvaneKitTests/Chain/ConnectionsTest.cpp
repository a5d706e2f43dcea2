#include "Chain/CurlPool.h"
#include "Chain/CurlSession.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <QProcess>
#include <QRegularExpression>

using namespace torvane;

/// Which connections there are, and what they cost while nothing is asked.
class ConnectionsTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;

    QUrl url(const char* path) const { return m_server.url(QLatin1String(path)); }

private Q_SLOTS:
    void initTestCase() {
        qunsetenv("https_proxy");
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_server.on("/", StandInAnswer::ok("hello"));
        m_server.on("/long", StandInAnswer::ok(QByteArray(300000, 'x')));
    }

    void init() { m_server.clearRequests(); }

    void onlyHTTP11IsSpoken() {
        // HTTP/2 first: a client that wanted it would get it, and fail here.
        StandInServer server;
        server.offer({"h2", "http/1.1"});
        server.on("/", StandInAnswer::ok("hello"));
        QCOMPARE(Fetch::outcomeOf(server.url(QStringLiteral("/"))), QStringLiteral("\"hello\""));
        QCOMPARE(server.requests().first().protocol, QByteArray("http/1.1"));
    }

    void anIdleClientWakesNobody() {
        QCOMPARE(Fetch::outcomeOf(url("/long")).size(), 300002);
        const CurlPool& pool = CurlSession::instance()->pool();
        QVERIFY(pool.isIdle());
        QVERIFY(!pool.findChild<QTimer*>()->isActive());
        const auto notifiers = pool.findChildren<QSocketNotifier*>();
        QVERIFY(!notifiers.isEmpty());
        for (const QSocketNotifier* notifier : notifiers)
            QVERIFY(!notifier->isEnabled());
    }

    void thisMachineIsReachedWithoutAProxy() {
        qputenv("https_proxy", "http://127.0.0.1:1");
        const QString outcome = Fetch::outcomeOf(url("/"));
        qunsetenv("https_proxy");
        QCOMPARE(outcome, QStringLiteral("\"hello\""));
    }

    void aReconnectionResumesTheTLSSession() {
        QProcess server;
        server.start(QStringLiteral("openssl"),
                     {QStringLiteral("s_server"), QStringLiteral("-accept"), QStringLiteral("127.0.0.1:0"),
                      QStringLiteral("-cert"), StandInServer::certificatePath("localhost"), QStringLiteral("-key"),
                      StandInServer::certificatePath("localhost").replace(QLatin1String(".pem"), QLatin1String(".key")),
                      QStringLiteral("-www")});
        static const QRegularExpression accepting(QStringLiteral("ACCEPT 127\\.0\\.0\\.1:(\\d+)"));
        QString said;
        const auto hasStarted = [&] {
            said += QString::fromLatin1(server.readAllStandardOutput());
            return accepting.match(said).hasMatch();
        };
        QTRY_VERIFY_WITH_TIMEOUT(hasStarted(), 30000);
        // Its page says how the connection came about; it closes after each.
        const QUrl page(QStringLiteral("https://localhost:%1/").arg(accepting.match(said).captured(1)));
        QVERIFY(Fetch::outcomeOf(page).contains(QStringLiteral("New, TLSv1.3")));
        NetworkClient::dropPooledConnections(); // A session outlives the pool.
        QVERIFY(Fetch::outcomeOf(page).contains(QStringLiteral("Reused, TLSv1.3")));
        server.kill();
        QVERIFY(server.waitForFinished());
    }

    void requestsShareOneConnection() {
        NetworkClient::dropPooledConnections();
        const int before = m_server.connectionCount();
        for (int i = 0; i < 5; ++i)
            QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        QCOMPARE(m_server.connectionCount(), before + 1);
    }

    void droppedConnectionsAreNotUsedAgain() {
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        const int before = m_server.connectionCount();
        NetworkClient::dropPooledConnections();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
        QCOMPARE(Fetch::outcomeOf(url("/")), QStringLiteral("\"hello\""));
        QCOMPARE(m_server.connectionCount(), before + 1);
    }

    void droppingConnectionsLeavesTransfersInFlightAlone() {
        m_server.on("/slow", StandInAnswer::ok(QByteArray(40, 's')).dripped(20, std::chrono::milliseconds(5)));
        const Fetch fetch(Request{.url = url("/slow")});
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        NetworkClient::dropPooledConnections();
        NetworkClient::dropPooledConnections();
        QTRY_COMPARE_WITH_TIMEOUT(fetch.outcome(), QLatin1Char('"') + QString(40, u's') + QLatin1Char('"'), 30000);
    }
};

QTEST_GUILESS_MAIN(ConnectionsTest)
#include "ConnectionsTest.moc"

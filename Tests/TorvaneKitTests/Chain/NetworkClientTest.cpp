#include "Chain/NetworkClient.h"

#include "Support/StandInServer.h"
#include "Support/TestConfig.h"

#include <QTest>

using namespace torvane;

namespace {

Task<> fetch(Request request, QByteArray& into) {
    Task<QByteArray> body = NetworkClient::request(request);
    into = co_await body;
}

} // namespace

class NetworkClientTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aBodyArrives() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        StandInServer server;
        server.on("/snapshot.json", StandInAnswer::ok("{}"));
        TaskScope scope;
        QByteArray body;
        scope.run(fetch(Request{.url = server.url(QStringLiteral("/snapshot.json"))}, body));
        QTRY_COMPARE_WITH_TIMEOUT(body, QByteArray("{}"), 30000);
    }
};

QTEST_GUILESS_MAIN(NetworkClientTest)
#include "NetworkClientTest.moc"

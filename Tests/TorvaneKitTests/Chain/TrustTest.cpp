#include "Chain/TrustStore.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "TorvaneKitTests/Chain/Fetch.h"
#include "TorvaneKitTests/Chain/StandInResolver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace torvane;

namespace {

const QString relay = QStringLiteral("relay.stand-in.test");
const QString node = QStringLiteral("node.stand-in.test");
const QString refused = QStringLiteral("connection 60"); // libcurl's "the peer's certificate was not OK"
const QString hello = QStringLiteral("\"hello\"");

} // namespace

class TrustTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;

    QUrl on(const QString& host) const { return m_server.url(QStringLiteral("/"), host); }

    void write(const QString& path, const QByteArray& bytes) const {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

private Q_SLOTS:
    void init() {
        qunsetenv("https_proxy"); // The names here mean this machine.
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        TestConfig::setRelayHost(relay);
        m_server.on("/", StandInAnswer::ok("hello"));
    }

    void theAnchorIsTrustedForTheRelayAndThisMachineAlone_data() {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("the relay") << relay << hello;
        QTest::newRow("localhost") << QStringLiteral("localhost") << hello;
        QTest::newRow("127.0.0.1") << QStringLiteral("127.0.0.1") << hello;
        QTest::newRow("a node") << node << refused;
        QTest::newRow("below the relay's name") << (QStringLiteral("sub.") + relay) << refused;
    }

    void theAnchorIsTrustedForTheRelayAndThisMachineAlone() {
        QFETCH(QString, host);
        QFETCH(QString, outcome);
        QCOMPARE(Fetch::outcomeOf(on(host)), outcome);
    }

    void aRedirectDoesNotCarryTheAnchorToAnotherHost() {
        m_server.on("/away", StandInAnswer::redirect(302, on(node).toEncoded()));
        QCOMPARE(Fetch::outcomeOf(m_server.url(QStringLiteral("/away"), relay)), refused);
    }

    void aConnectionMadeWithTheAnchorIsNotUsedWithoutIt() {
        QCOMPARE(Fetch::outcomeOf(on(relay)), hello);
        QCOMPARE(m_server.openConnectionCount() > 0, true);
        TestConfig::setRelayHost(QStringLiteral("other.stand-in.test"));
        QCOMPARE(Fetch::outcomeOf(on(relay)), refused);
        TestConfig::setRelayHost(relay);
        QCOMPARE(Fetch::outcomeOf(on(relay)), hello);
    }

    void aCertificateThatIsNotInOrderIsRefused_data() {
        QTest::addColumn<QString>("certificate");
        for (const char* name : {"otherhost", "expired", "stranger"})
            QTest::newRow(name) << StandInServer::certificatePath(name);
    }

    void aCertificateThatIsNotInOrderIsRefused() {
        QFETCH(QString, certificate);
        StandInServer server(certificate);
        server.on("/", StandInAnswer::ok("hello"));
        QCOMPARE(Fetch::outcomeOf(server.url(QStringLiteral("/"))), refused);
        QVERIFY(server.requests().isEmpty());
    }

    void anAnchorThatIsMissingOrEmptyAddsNothing_data() {
        QTest::addColumn<QString>("path");
        QTest::newRow("none") << QString();
        QTest::newRow("missing") << QStringLiteral("/nonexistent/relay.pem");
        QTest::newRow("a directory") << QStringLiteral("/tmp");
    }

    void anAnchorThatIsMissingOrEmptyAddsNothing() {
        QFETCH(QString, path);
        TestConfig::setTrustAnchorPath(path);
        // Refused for its certificate, not because no request could be made at all (77).
        QCOMPARE(Fetch::outcomeOf(on(relay)), refused);
    }

    void anAnchorThatComesIntoBeingIsTrustedFromTheNextRequest() {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("relay.pem"));
        TestConfig::setTrustAnchorPath(path);
        QCOMPARE(Fetch::outcomeOf(on(relay)), refused);
        write(path, {});
        QCOMPARE(Fetch::outcomeOf(on(relay)), refused);
        QVERIFY(QFile::remove(path));
        QVERIFY(QFile::copy(StandInServer::certificatePath("ca"), path));
        QCOMPARE(Fetch::outcomeOf(on(relay)), hello);
    }

    void loopbackHosts_data() {
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("isLoopback");
        const auto row = [](const char* host, bool isLoopback) {
            QTest::newRow(host) << QUrl(QLatin1String("https://") + QLatin1String(host)).host() << isLoopback;
        };
        row("localhost", true);
        row("LOCALHOST", true);
        row("127.0.0.1", true);
        row("127.255.255.254", true);
        row("[::1]", true);
        row("[0:0:0:0:0:0:0:1]", true);
        row("128.0.0.1", false);
        row("127.evil.example", false);
        row("127.0.0.evil", false);
        row("127.0.0.1.evil.example", false);
        row("localhost.evil.example", false);
        row("evil-localhost", false);
        row("[::2]", false);
        row("[::ffff:8.8.8.8]", false);
    }

    void loopbackHosts() {
        QFETCH(QString, host);
        QFETCH(bool, isLoopback);
        QCOMPARE(TrustStore::isLoopback(host), isLoopback);
    }

    void theSystemStoreIsAFolderOfLinksOrElseAFile() {
        const QTemporaryDir directory;
        const QByteArray folder = QFile::encodeName(directory.path());
        QVERIFY(TrustStore::systemStore(directory.path()).folder.isEmpty());
        QVERIFY(TrustStore::systemStore(directory.path()).file.isEmpty());
        write(directory.filePath(QStringLiteral("ca-certificates.crt")), "bundle");
        QCOMPARE(TrustStore::systemStore(directory.path()).file, folder + "/ca-certificates.crt");
        QVERIFY(TrustStore::systemStore(directory.path()).folder.isEmpty());
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("certificates.0"))); // Not a link to one.
        write(directory.filePath(QStringLiteral("authority.0.pem")), "certificate");
        QVERIFY(TrustStore::systemStore(directory.path()).folder.isEmpty());
        write(directory.filePath(QStringLiteral("deadbeef.0")), "link");
        QCOMPARE(TrustStore::systemStore(directory.path()).folder, folder);
        QVERIFY(TrustStore::systemStore(directory.path()).file.isEmpty());
    }

    void theAnchorStandsBesideTheSystemStore() {
        const QTemporaryDir directory;
        const QString anchor = directory.filePath(QStringLiteral("anchor.pem"));
        const QString bundle = directory.filePath(QStringLiteral("bundle.pem"));
        write(anchor, "anchor");
        write(bundle, "bundle");
        const TrustStore::SystemStore folder{.folder = "/certs", .file = {}};
        const TrustStore::SystemStore file{.folder = {}, .file = QFile::encodeName(bundle)};
        using TrustStore::Trust;
        QCOMPARE(TrustStore::combine(folder, {}), (Trust{.folder = "/certs", .file = {}, .bundle = {}}));
        QCOMPARE(TrustStore::combine(folder, anchor),
                 (Trust{.folder = "/certs", .file = QFile::encodeName(anchor), .bundle = {}}));
        QCOMPARE(TrustStore::combine(file, {}), (Trust{.folder = {}, .file = file.file, .bundle = {}}));
        QCOMPARE(TrustStore::combine(file, anchor), (Trust{.folder = {}, .file = {}, .bundle = "bundle\nanchor"}));
    }
};

QTEST_GUILESS_MAIN(TrustTest)
#include "TrustTest.moc"

#include "SnapshotServer.h"

#include "Chain/NetworkClient.h"
#include "Support/Await.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

using namespace torvane;

namespace {

const QString localhost = QStringLiteral("localhost");

} // namespace

/// The certificate of a relay on this machine, and its server as velisk meets it.
class SnapshotServerTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_directory;

    QString certificatePath() const { return m_directory->filePath(QStringLiteral("velisk/relay.pem")); }

    ServerCertificate certificate() const { return ServerCertificate::at(certificatePath(), localhost); }

    static QByteArray fetch(const SnapshotServer& server, const QString& path = QStringLiteral("/snapshot.json")) {
        Request request;
        request.url = QUrl(QStringLiteral("https://localhost"));
        request.url.setPort(server.port());
        request.url.setPath(path);
        request.cachePolicy = CachePolicy::revalidate;
        return await(NetworkClient::request(request));
    }

    static int statusOf(const SnapshotServer& server, const QString& path = QStringLiteral("/snapshot.json")) {
        try {
            fetch(server, path);
            return 200;
        } catch (const NetworkFailure& failure) {
            return failure.code();
        }
    }

    /// What the server answers, head and all, to a client that trusts this certificate.
    QByteArray curl(const SnapshotServer& server, const QStringList& arguments = {}) const {
        QProcess process;
        const QString url = QStringLiteral("https://localhost:%1/snapshot.json").arg(server.port());
        process.start(QStringLiteral("curl"),
                      QStringList{QStringLiteral("-sSi"), QStringLiteral("--cacert"), certificatePath(), url} +
                          arguments);
        if (!process.waitForFinished(60'000))
            qFatal("curl does not end");
        return process.readAllStandardOutput() + process.readAllStandardError();
    }

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        TestConfig::setTrustAnchorPath(certificatePath());
    }

    void theFirstStartMakesAKeyForItsOwnerAlone() {
        const ServerCertificate made = certificate();
        QCOMPARE(made.certificate, certificatePath());
        QCOMPARE(made.key, m_directory->filePath(QStringLiteral("velisk/relay.key")));
        QCOMPARE(QFile::permissions(made.key) & QFile::Permissions(0x0077), QFile::Permissions());
        const QSslCertificate pem = QSslCertificate::fromPath(made.certificate).value(0);
        QCOMPARE(pem.issuerDisplayName(), pem.subjectDisplayName());
        QCOMPARE(pem.publicKey().algorithm(), QSsl::Ec);
        QCOMPARE(pem.publicKey().length(), 256);
        QCOMPARE(pem.subjectAlternativeNames().values(QSsl::DnsEntry), QStringList{localhost});
        QVERIFY(pem.expiryDate() > QDateTime::currentDateTime().addYears(9));
    }

    void theNextStartTakesItAgain() {
        const QByteArray first = TestFiles::contentOf(certificate().certificate);
        QCOMPARE(TestFiles::contentOf(certificate().certificate), first);
        QCOMPARE(
            TestFiles::contentOf(ServerCertificate::at(certificatePath(), QStringLiteral("127.0.0.1")).certificate),
            first);
        QCOMPARE(TestFiles::contentOf(ServerCertificate::at(certificatePath(), QStringLiteral("::1")).certificate),
                 first);
    }

    void anotherHostOrADamagedFileTakesANewOne() {
        QByteArray before = TestFiles::contentOf(certificate().certificate);
        const auto isNew = [&](const QString& host) {
            const QByteArray made = TestFiles::contentOf(ServerCertificate::at(certificatePath(), host).certificate);
            return std::exchange(before, made) != made;
        };
        QVERIFY(isNew(QStringLiteral("box.lan")));
        QVERIFY(!isNew(localhost));
        QVERIFY(isNew(QStringLiteral("192.168.7.1")));
        TestFiles::put(certificatePath(), before.first(100));
        QVERIFY(isNew(localhost));
        TestFiles::put(m_directory->filePath(QStringLiteral("velisk/relay.key")), "no key");
        QVERIFY(isNew(localhost));
    }

    /// Whoever starts second must find a pair, never one's key and the other's certificate.
    void firstStartsAtTheSameTimeAgreeOnOne() {
        for (int round = 0; round < 20; ++round) {
            m_directory = std::make_unique<QTemporaryDir>();
            std::vector<std::thread> starts;
            for (int i = 0; i < 6; ++i)
                starts.emplace_back([this] { static_cast<void>(certificate()); });
            for (std::thread& start : starts)
                start.join();
            const QByteArray agreed = TestFiles::contentOf(certificatePath());
            QCOMPARE(TestFiles::contentOf(certificate().certificate), agreed); // A pair that fails is made anew.
        }
    }

    void somebodyElsesCertificateIsLeftAlone() {
        TestFiles::put(certificatePath(),
                       TestFiles::contentOf(QLatin1String(TORVANE_TEST_CERTIFICATES) + QStringLiteral("/ca.pem")));
        const QByteArray before = TestFiles::contentOf(certificatePath());
        QVERIFY_EXCEPTION_THROWN(certificate(), CertificateFailure);
        QCOMPARE(TestFiles::contentOf(certificatePath()), before);
    }

    void veliskTrustsItAndGetsTheDocument() {
        SnapshotServer server(certificate(), localhost, 0);
        QCOMPARE(statusOf(server), 503); // There is none yet.
        server.serve("{\"a\":1}");
        QCOMPARE(fetch(server), QByteArray("{\"a\":1}"));
        server.serve("{\"a\":2}");
        QCOMPARE(fetch(server), QByteArray("{\"a\":2}"));
        QCOMPARE(statusOf(server, QStringLiteral("/")), 404);
        QCOMPARE(statusOf(server, QStringLiteral("/relay.key")), 404);
    }

    void whoeverDoesNotTrustItGetsNothing() {
        SnapshotServer server(certificate(), localhost, 0);
        server.serve("{}");
        TestConfig::setTrustAnchorPath(QLatin1String(TORVANE_TEST_CERTIFICATES) + QStringLiteral("/ca.pem"));
        QVERIFY_EXCEPTION_THROWN(fetch(server), TransportFailure);
    }

    void anUnchangedDocumentIsNotSentAgain() {
        SnapshotServer server(certificate(), localhost, 0);
        server.serve("{\"a\":1}");
        const QByteArray whole = curl(server);
        QVERIFY(whole.contains("200 OK") && whole.contains("Cache-Control: max-age=30"));
        QVERIFY(whole.contains("Content-Type: application/json"));
        const qsizetype place = whole.indexOf("ETag: ") + 6;
        const QString validator = QString::fromLatin1(whole.sliced(place, whole.indexOf('\r', place) - place));
        const QStringList condition{QStringLiteral("-H"), QStringLiteral("If-None-Match: ") + validator};
        QVERIFY(curl(server, condition).contains("304 Not Modified"));
        QVERIFY(!curl(server, condition).contains("{\"a\""));
        server.serve("{\"a\":2}");
        QVERIFY(curl(server, condition).contains("{\"a\":2}"));
    }

    void onlyReadingIsAnswered() {
        SnapshotServer server(certificate(), localhost, 0);
        server.serve("{\"a\":1}");
        QVERIFY(!curl(server, {QStringLiteral("-d"), QStringLiteral("{}")}).contains("200 OK"));
        const QByteArray head = curl(server, {QStringLiteral("-I")});
        QVERIFY(head.contains("200 OK") && !head.contains("{\"a\":1}"));
    }

    void aHeadWithoutEndIsCutOff() {
        SnapshotServer server(certificate(), localhost, 0);
        server.serve("{\"a\":1}");
        QSslSocket client;
        client.setPeerVerifyMode(QSslSocket::VerifyNone);
        client.connectToHostEncrypted(QStringLiteral("127.0.0.1"), static_cast<quint16>(server.port()));
        QVERIFY(client.waitForEncrypted(60'000));
        client.write("GET /snapshot.json HTTP/1.1\r\n");
        const QByteArray line = "X-A: " + QByteArray(4000, 'a') + "\r\n";
        constexpr qint64 muchMore = 64 * 1024 * 1024; // Than any socket takes on by itself.
        qint64 sent = 0;
        for (; sent < muchMore && client.state() == QAbstractSocket::ConnectedState; sent += line.size()) {
            client.write(line);
            while (client.bytesToWrite() + client.encryptedBytesToWrite() > 0 && client.waitForBytesWritten(60'000)) {
            }
        }
        QVERIFY2(sent < muchMore, qPrintable(QString::number(sent)));
        QCOMPARE(fetch(server), QByteArray("{\"a\":1}")); // And all others are served.
    }

    void aTakenPortIsRefused() {
        const SnapshotServer first(certificate(), localhost, 0);
        QVERIFY_EXCEPTION_THROWN(SnapshotServer(certificate(), localhost, first.port()), ListenFailure);
        QVERIFY_EXCEPTION_THROWN(SnapshotServer(certificate(), QStringLiteral("192.0.2.1"), 0), ListenFailure);
    }
};

QTEST_GUILESS_MAIN(SnapshotServerTest)
#include "SnapshotServerTest.moc"

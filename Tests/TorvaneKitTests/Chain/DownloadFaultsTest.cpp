#include "Chain/NetworkClient.h"
#include "Chain/NetworkLimits.h"
#include "TorvaneKitTests/Chain/Retrieval.h"

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>

using namespace torvane;
using namespace std::chrono_literals;
using Ending = StandInAnswer::Ending;

Q_DECLARE_METATYPE(torvane::StandInAnswer)

class DownloadFaultsTest final : public QObject {
    Q_OBJECT

    DownloadScene m_scene;
    StandInServer& m_server = m_scene.server;

    FileDownload download(const char* path, qint64 length) const { return m_scene.download(path, length); }

    QByteArray written() const { return m_scene.written(); }

private Q_SLOTS:
    void init() { m_scene.reset(); }

    void cleanup() { NetworkLimits::downloadDeadline = 1h; }

    void aFileThatIsNotWhatWasSaidIsAFailure_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* name, const StandInAnswer& answer, const char* outcome) {
            QTest::newRow(name) << answer << QString::fromLatin1(outcome);
        };
        const QByteArray bytes = payload(200000);
        const StandInAnswer ok = StandInAnswer::ok(bytes);
        row("a byte too many", StandInAnswer::ok(bytes + 'x'), "too large");
        row("a byte too few", StandInAnswer::ok(bytes.chopped(1)), "too short");
        row("nothing", StandInAnswer::ok({}), "too short");
        row("no content", StandInAnswer::status(204), "too short");
        row("without end", StandInAnswer::endlessBody(), "too large");
        row("cut short by a close", ok.withoutLength().cutShort(100000, Ending::closeNotify), "too short");
        row("cut short", ok.cutShort(100000, Ending::closeNotify), "connection 18");
        row("reset", ok.cutShort(100000, Ending::reset), "connection 56");
        row("not found", StandInAnswer::status(404, bytes), "http 404");
        row("an error of the server", StandInAnswer::status(500), "http 500");
        row("redirected without an address", StandInAnswer::status(302, bytes), "http 302");
        row("not modified", StandInAnswer::status(304), "http 304");
        row("no HTTP", StandInAnswer::raw("220 mail.example ESMTP\r\n"), "http 0");
        row("to http", StandInAnswer::redirect(302, "http://localhost/"), "not secure");
        row("to a file", StandInAnswer::redirect(302, "file:///etc/passwd"), "not secure");
        row("in circles", StandInAnswer::redirect(302, "/fault"), "too many redirects");
    }

    void aFileThatIsNotWhatWasSaidIsAFailure() {
        QFETCH(StandInAnswer, answer);
        QFETCH(QString, outcome);
        m_server.on("/fault", answer);
        QCOMPARE(Retrieval::outcomeOf(download("/fault", 200000)), outcome);
        QVERIFY(written().size() <= 200000);
    }

    void anAddressThatIsNotSecureIsRefused() {
        FileDownload plain = download("/short", 5);
        plain.url.setScheme(QStringLiteral("http"));
        QCOMPARE(Retrieval::outcomeOf(plain), QStringLiteral("not secure"));
        plain.url = QUrl(QStringLiteral("file:///etc/passwd"));
        QCOMPARE(Retrieval::outcomeOf(plain), QStringLiteral("not secure"));
        StandInServer stranger(StandInServer::certificatePath("stranger"));
        stranger.on("/", StandInAnswer::ok("12345"));
        plain.url = stranger.url(QStringLiteral("/"));
        QCOMPARE(Retrieval::outcomeOf(plain), QStringLiteral("connection 60"));
        QCOMPARE(written(), QByteArray());
    }

    void aServerThatFallsSilentIsNotWaitedFor_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::newRow("at once") << StandInAnswer::silent();
        QTest::newRow("in the head") << StandInAnswer::ok("12345").cutShortInHead(10, Ending::silence);
        QTest::newRow("in the body") << StandInAnswer::ok("12345").cutShort(3, Ending::silence);
    }

    void aServerThatFallsSilentIsNotWaitedFor() {
        QFETCH(StandInAnswer, answer);
        m_server.on("/stall", answer);
        FileDownload stalling = download("/stall", 5);
        QCOMPARE(stalling.timeout, 30000ms);
        stalling.timeout = 200ms;
        QCOMPARE(Retrieval::outcomeOf(stalling), QStringLiteral("timed out"));
    }

    void aBodyThatDripsEndsAtTheDeadline() {
        m_server.on("/drip", StandInAnswer::ok(QByteArray(100000, 'd')).dripped(1, 20ms));
        NetworkLimits::downloadDeadline = 700ms;
        QCOMPARE(Retrieval::outcomeOf(download("/drip", 100000)), QStringLiteral("timed out"));
    }

    void aDiskThatFailsEndsTheDownload_data() {
        QTest::addColumn<int>("size");
        QTest::newRow("at the end") << 1000;
        QTest::newRow("on the way") << 4000000;
    }

    void aDiskThatFailsEndsTheDownload() {
        QFETCH(int, size);
        m_server.on("/file", StandInAnswer::ok(QByteArray(size, 'f')));
        const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
        FileDownload failing = download("/file", size);
        failing.descriptor = full.get();
        QCOMPARE(Retrieval::outcomeOf(failing), QStringLiteral("disk: the disk is full"));
        const FileDescriptor readOnly(::open("/dev/zero", O_RDONLY | O_CLOEXEC));
        failing.descriptor = readOnly.get();
        QCOMPARE(Retrieval::outcomeOf(failing), QStringLiteral("disk: Bad file descriptor"));
        failing.descriptor = -1;
        QCOMPARE(Retrieval::outcomeOf(failing), QStringLiteral("disk: Bad file descriptor"));
    }

    void aDiskThatFailsWhileTheServerWaitsEndsTheDownload() {
        // All of it is on its way when the first write fails.
        m_server.on("/file", StandInAnswer::ok(QByteArray(4000000, 'f')).cutShort(1000000, Ending::silence));
        const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
        FileDownload failing = download("/file", 4000000);
        failing.descriptor = full.get();
        auto disk = std::make_unique<SlowDisk>();
        const Retrieval retrieval(failing);
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        QCOMPARE(Fetch::outcomeOf(Request{.url = m_scene.url("/silent"), .timeout = 1s}), QStringLiteral("timed out"));
        disk.reset();
        QTRY_COMPARE_WITH_TIMEOUT(retrieval.outcome(), QStringLiteral("disk: the disk is full"), 30000);
    }

    void aFileThatMayNotGrowFurtherIsAFailure() {
        std::signal(SIGXFSZ, SIG_IGN); // As in the program.
        m_server.on("/file", StandInAnswer::ok(QByteArray(300000, 'f')));
        rlimit usual{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &usual), 0);
        const rlimit small{.rlim_cur = 100000, .rlim_max = usual.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
        const QString outcome = Retrieval::outcomeOf(download("/file", 300000));
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &usual), 0);
        QCOMPARE(outcome, QStringLiteral("disk: File too large"));
        QCOMPARE(written(), QByteArray(100000, 'f'));
    }
};

QTEST_GUILESS_MAIN(DownloadFaultsTest)
#include "DownloadFaultsTest.moc"

#include "Chain/FileSink.h"
#include "Chain/NetworkClient.h"
#include "Chain/NetworkLimits.h"
#include "Support/FileDescriptor.h"
#include "Support/LogLines.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/resource.h>

using namespace torvane;
using namespace std::chrono_literals;
using Ending = StandInAnswer::Ending;

namespace {

/// Bytes that differ from place to place.
QByteArray payload(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

/// One download on its way, and what became of it in words.
class Retrieval final {
public:
    explicit Retrieval(const FileDownload& download) { m_scope.emplace().run(run(download, m_outcome)); }

    Retrieval(const Retrieval&) = delete;
    Retrieval& operator=(const Retrieval&) = delete;

    bool isDone() const { return !m_outcome.isNull(); }

    const QString& outcome() const { return m_outcome; }

    void cancel() { m_scope.reset(); }

    static QString outcomeOf(const FileDownload& download) {
        const Retrieval retrieval(download);
        const bool isDone = QTest::qWaitFor([&] { return retrieval.isDone(); }, 60000);
        return isDone ? retrieval.outcome() : QStringLiteral("still on its way");
    }

private:
    static Task<> run(FileDownload download, QString& outcome) {
        try {
            Task<> fetching = NetworkClient::download(download);
            co_await fetching;
            outcome = QStringLiteral("done");
        } catch (const NetworkFailure& failure) {
            outcome = QLatin1String("http ") + QLatin1String(QByteArray::number(failure.code()));
        } catch (const TransportFailure& failure) {
            outcome = Fetch::words(failure);
        }
    }

    QString m_outcome;
    std::optional<TaskScope> m_scope; // Last, so that it goes first.
};

/// Keeps the worker busy, as a disk does that does not answer.
class SlowDisk final {
public:
    SlowDisk()
        : m_lock(*m_mutex) {
        worker().start([mutex = m_mutex] { const std::lock_guard waiting(*mutex); });
    }

private:
    std::shared_ptr<std::mutex> m_mutex = std::make_shared<std::mutex>();
    std::unique_lock<std::mutex> m_lock;
};

/// How many of this process's descriptors are open on a file.
int openDescriptorsOf(const QString& path) {
    int count = 0;
    const QStringList descriptors =
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files);
    for (const QString& descriptor : descriptors) {
        if (QFile::symLinkTarget(QLatin1String("/proc/self/fd/") + descriptor) == path)
            ++count;
    }
    return count;
}

} // namespace

Q_DECLARE_METATYPE(torvane::StandInAnswer)

class DownloadTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;
    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("payload"));
    FileDescriptor m_file{-1};

    QUrl url(const char* path) const { return m_server.url(QLatin1String(path)); }

    FileDownload download(const char* path, qint64 length) const {
        return {.url = url(path), .descriptor = m_file.get(), .length = length};
    }

    QByteArray written() const { return TestFiles::contentOf(m_path); }

private Q_SLOTS:
    void initTestCase() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_server.on("/silent", StandInAnswer::silent());
        m_server.on("/short", StandInAnswer::ok("12345"));
    }

    void init() {
        m_server.clearRequests();
        m_file =
            FileDescriptor(::open(QFile::encodeName(m_path).constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    }

    void cleanup() { NetworkLimits::downloadDeadline = 1h; }

    void aFileArrivesByteForByte_data() {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 65535, 65536, 65537, 300000, 5000000})
            QTest::addRow("%d bytes", size) << size;
    }

    void aFileArrivesByteForByte() {
        QFETCH(int, size);
        const QByteArray bytes = payload(size);
        m_server.on("/file", StandInAnswer::ok(bytes));
        m_server.on("/chunked", StandInAnswer::ok(bytes).chunked());
        QCOMPARE(Retrieval::outcomeOf(download("/file", size)), QStringLiteral("done"));
        QVERIFY(written() == bytes);
        QCOMPARE(::ftruncate(m_file.get(), 0), 0);
        QCOMPARE(::lseek(m_file.get(), 0, SEEK_SET), off_t(0));
        if (size < 1000000)
            QCOMPARE(Retrieval::outcomeOf(download("/chunked", size)), QStringLiteral("done"));
        QVERIFY(size >= 1000000 || written() == bytes);
    }

    void nothingIsDecodedOrRemembered() {
        const QByteArray bytes = payload(5000);
        const StandInAnswer answer = StandInAnswer::ok(bytes).gzipped().header("Cache-Control", "max-age=1000");
        m_server.on("/gzip", answer);
        for (int i = 0; i < 2; ++i) {
            init();
            QCOMPARE(Retrieval::outcomeOf(download("/gzip", answer.body.size())), QStringLiteral("done"));
            QVERIFY(written() == answer.body);
            QCOMPARE(m_server.requests().size(), 1);
            QCOMPARE(m_server.requests().first().header("Accept-Encoding"), QByteArray("identity"));
            QCOMPARE(m_server.requests().first().header("User-Agent"), QByteArray("torvane/0.3.0 (macOS)"));
        }
    }

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

    void onlyTheLastServersBodyIsWritten() {
        m_server.on("/moved", StandInAnswer::redirect(301, "/short"));
        QCOMPARE(Retrieval::outcomeOf(download("/moved", 5)), QStringLiteral("done"));
        QCOMPARE(written(), QByteArray("12345"));
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

    void aDownloadMayTakeLongerThanARequest() {
        m_server.on("/drip", StandInAnswer::ok(QByteArray(600, 'd')).dripped(20, 20ms));
        NetworkLimits::totalDeadline = 100ms;
        const QString outcome = Retrieval::outcomeOf(download("/drip", 600));
        NetworkLimits::totalDeadline = 60s;
        QCOMPARE(outcome, QStringLiteral("done"));
    }

    void aServerWaitsForASlowDiskAndNotTheOtherWayRound() {
        const QByteArray bytes = payload(4000000);
        m_server.on("/file", StandInAnswer::ok(bytes));
        FileDownload patient = download("/file", bytes.size());
        patient.timeout = 100ms;
        auto disk = std::make_unique<SlowDisk>();
        const Retrieval retrieval(patient);
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        // Many times as long as the server may be silent.
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/silent"), .timeout = 1s}), QStringLiteral("timed out"));
        QVERIFY(!retrieval.isDone());
        QCOMPARE(written(), QByteArray());
        disk.reset();
        QTRY_COMPARE_WITH_TIMEOUT(retrieval.outcome(), QStringLiteral("done"), 60000);
        QVERIFY(written() == bytes);
    }

    void whatWaitsForASlowDiskIsBounded() {
        auto disk = std::make_unique<SlowDisk>();
        FileSink sink(m_file.get(), 100000000, {});
        const QByteArray piece(16384, 'p');
        qint64 taken = 0;
        while (sink.take(piece) == FileSink::Outcome::taken)
            taken += piece.size();
        QVERIFY(taken < 1000000);
        QCOMPARE(sink.size(), taken);
        bool hasRoom = false;
        connect(&sink, &FileSink::hasRoom, this, [&] { hasRoom = true; });
        disk.reset();
        QTRY_VERIFY_WITH_TIMEOUT(hasRoom, 30000);
        QVERIFY(sink.take(piece) == FileSink::Outcome::taken);
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
        QCOMPARE(Fetch::outcomeOf(Request{.url = url("/silent"), .timeout = 1s}), QStringLiteral("timed out"));
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

    void progressIsTold() {
        const QByteArray bytes = payload(1000000);
        m_server.on("/file", StandInAnswer::ok(bytes));
        QList<qint64> told;
        FileDownload telling = download("/file", bytes.size());
        telling.progress = [&](qint64 received) { told.append(received); };
        QCOMPARE(Retrieval::outcomeOf(telling), QStringLiteral("done"));
        QVERIFY(told.size() > 2);
        QVERIFY(std::is_sorted(told.cbegin(), told.cend()));
        QCOMPARE(told.last(), bytes.size());
    }

    void whoeverIsToldOfProgressMayCancel() {
        m_server.on("/file", StandInAnswer::ok(QByteArray(4000000, 'f')));
        std::unique_ptr<Retrieval> retrieval;
        bool isCancelled = false;
        FileDownload cancelling = download("/file", 4000000);
        cancelling.progress = [&](qint64) {
            isCancelled = true;
            retrieval.reset();
        };
        retrieval = std::make_unique<Retrieval>(cancelling);
        QTRY_VERIFY_WITH_TIMEOUT(isCancelled, 30000);
        QVERIFY(!retrieval);
        worker().waitForDone();
        QVERIFY(written().size() < 4000000);
    }

    void aCancelledDownloadLeavesNothingBehind() {
        m_server.on("/file", StandInAnswer::ok(QByteArray(4000000, 'f')));
        auto disk = std::make_unique<SlowDisk>();
        Retrieval retrieval(download("/file", 4000000));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        retrieval.cancel();
        m_file = FileDescriptor(-1);
        // Its number now stands for another file, which must stay as it is.
        const QString other = m_directory.filePath(QStringLiteral("other"));
        const FileDescriptor second(::open(QFile::encodeName(other).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        disk.reset();
        worker().waitForDone();
        QCOMPARE(TestFiles::contentOf(other), QByteArray());
        QCOMPARE(openDescriptorsOf(m_path), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
    }

    void noDescriptorOfOursIsLeftWhenADownloadHasEnded() {
        for (int i = 0; i < 20; ++i) {
            init();
            QCOMPARE(Retrieval::outcomeOf(download("/short", 5)), QStringLiteral("done"));
            QCOMPARE(openDescriptorsOf(m_path), 1);
        }
    }

    void oneLineIsLogged() {
        m_server.on("/moved", StandInAnswer::redirect(301, "/short"));
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(Retrieval::outcomeOf(download("/moved", 5)), QStringLiteral("done"));
        QCOMPARE(Retrieval::outcomeOf(download("/nothing", 5)), QStringLiteral("http 404"));
        QCOMPARE(Retrieval::outcomeOf(download("/short", 6)), QStringLiteral("too short"));
        static const QRegularExpression time(QStringLiteral(" ms=\\d+ "));
        QCOMPARE(log.lines().replaceInStrings(time, QStringLiteral(" ")),
                 QStringList({QStringLiteral("info: method=GET host=localhost bytes=5 ok"),
                              QStringLiteral("info: method=GET host=localhost bytes=12 fail"),
                              QStringLiteral("info: method=GET host=localhost bytes=0 fail")}));
    }
};

QTEST_GUILESS_MAIN(DownloadTest)
#include "DownloadTest.moc"

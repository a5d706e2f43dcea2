#include "Chain/FileSink.h"
#include "Chain/NetworkClient.h"
#include "Chain/NetworkLimits.h"
#include "Support/LogLines.h"
#include "TorvaneKitTests/Chain/Retrieval.h"

#include <QDir>
#include <QRegularExpression>

#include <fcntl.h>
#include <memory>

using namespace torvane;
using namespace std::chrono_literals;

namespace {

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

class DownloadTest final : public QObject {
    Q_OBJECT

    DownloadScene m_scene;
    StandInServer& m_server = m_scene.server;

    FileDownload download(const char* path, qint64 length) const { return m_scene.download(path, length); }

    QByteArray written() const { return m_scene.written(); }

private Q_SLOTS:
    void init() { m_scene.reset(); }

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
        QCOMPARE(::ftruncate(m_scene.file.get(), 0), 0);
        QCOMPARE(::lseek(m_scene.file.get(), 0, SEEK_SET), off_t(0));
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

    void onlyTheLastServersBodyIsWritten() {
        m_server.on("/moved", StandInAnswer::redirect(301, "/short"));
        QCOMPARE(Retrieval::outcomeOf(download("/moved", 5)), QStringLiteral("done"));
        QCOMPARE(written(), QByteArray("12345"));
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
        patient.timeout = 2s;
        auto disk = std::make_unique<SlowDisk>();
        const Retrieval retrieval(patient);
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), 1, 30000);
        // Longer than the server may be silent.
        QCOMPARE(Fetch::outcomeOf(Request{.url = m_scene.url("/silent"), .timeout = 5s}), QStringLiteral("timed out"));
        QVERIFY(!retrieval.isDone());
        QCOMPARE(written(), QByteArray());
        disk.reset();
        QTRY_COMPARE_WITH_TIMEOUT(retrieval.outcome(), QStringLiteral("done"), 60000);
        QVERIFY(written() == bytes);
    }

    void whatWaitsForASlowDiskIsBounded() {
        auto disk = std::make_unique<SlowDisk>();
        FileSink sink(m_scene.file.get(), 100000000, {});
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
        m_scene.file = FileDescriptor(-1);
        // Its number now stands for another file, which must stay as it is.
        const QString other = m_scene.directory.filePath(QStringLiteral("other"));
        const FileDescriptor second(::open(QFile::encodeName(other).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        disk.reset();
        worker().waitForDone();
        QCOMPARE(TestFiles::contentOf(other), QByteArray());
        QCOMPARE(openDescriptorsOf(m_scene.path), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
    }

    void noDescriptorOfOursIsLeftWhenADownloadHasEnded() {
        for (int i = 0; i < 20; ++i) {
            init();
            QCOMPARE(Retrieval::outcomeOf(download("/short", 5)), QStringLiteral("done"));
            QCOMPARE(openDescriptorsOf(m_scene.path), 1);
        }
    }

    void oneLineIsLogged() {
        m_server.on("/moved", StandInAnswer::redirect(301, "/short"));
        const LogLines log("org.velisk.Torvane.net");
        QCOMPARE(Retrieval::outcomeOf(download("/moved", 5)), QStringLiteral("done"));
        QCOMPARE(Retrieval::outcomeOf(download("/nothing", 5)), QStringLiteral("http 404"));
        QCOMPARE(Retrieval::outcomeOf(download("/short", 6)), QStringLiteral("too short"));
        static const QRegularExpression time(QStringLiteral(" ms=\\d+ "));
        QStringList lines = log.lines();
        QCOMPARE(lines.replaceInStrings(time, QStringLiteral(" ")),
                 QStringList({QStringLiteral("info: method=GET host=localhost bytes=5 ok"),
                              QStringLiteral("info: method=GET host=localhost bytes=12 fail"),
                              QStringLiteral("info: method=GET host=localhost bytes=0 fail")}));
    }
};

QTEST_GUILESS_MAIN(DownloadTest)
#include "DownloadTest.moc"

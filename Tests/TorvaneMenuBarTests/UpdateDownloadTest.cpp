#include "UpdateDownload.h"

#include "Chain/NetworkClient.h"
#include "Chain/NetworkFailure.h"
#include "Support/Await.h"
#include "Support/FileDescriptor.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"

#include <QTemporaryDir>

#include <fcntl.h>

using namespace torvane;
using Ending = StandInAnswer::Ending;

Q_DECLARE_METATYPE(torvane::StandInAnswer)

class UpdateDownloadTest final : public QObject {
    Q_OBJECT

    StandInServer m_server;
    UpdateDownload m_download;
    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("payload"));

    QString documentAt(const QUrl& url, qsizetype limit = 100) {
        try {
            const Task<QByteArray> document = m_download.document(url, limit);
            return QString::fromUtf8(await(document));
        } catch (const DownloadFailure& failure) {
            return QString::fromUtf8(failure.what());
        }
    }

    QString documentAt(const char* path) { return documentAt(m_server.url(QLatin1String(path))); }

    QString fileAt(const QUrl& url, qint64 length, int descriptor = -1) {
        const FileDescriptor file(::open(QFile::encodeName(m_path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
        try {
            const Task<> fetching =
                m_download.file({.url = url, .descriptor = descriptor < 0 ? file.get() : descriptor, .length = length});
            await(fetching);
        } catch (const DownloadFailure& failure) {
            return QString::fromUtf8(failure.what());
        }
        return QString::fromUtf8(TestFiles::contentOf(m_path));
    }

private Q_SLOTS:
    void initTestCase() { TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca")); }

    void init() { m_server.clearRequests(); }

    void aDocumentIsFetchedAnewEachTime() {
        m_server.on("/feed", StandInAnswer::ok("one").header("Cache-Control", "max-age=1000").header("ETag", "\"1\""));
        QCOMPARE(documentAt("/feed"), QStringLiteral("one"));
        m_server.on("/feed", StandInAnswer::ok("two").header("Cache-Control", "max-age=1000").header("ETag", "\"1\""));
        QCOMPARE(documentAt("/feed"), QStringLiteral("two"));
        QCOMPARE(m_server.requests().size(), 2);
        QCOMPARE(m_server.requests().last().header("Cache-Control"), QByteArray("no-cache"));
        QVERIFY(m_server.requests().last().header("If-None-Match").isNull());
    }

    void aDocumentHasALimit() {
        m_server.on("/feed", StandInAnswer::ok(QByteArray(100, 'd')));
        QCOMPARE(documentAt("/feed"), QString(100, u'd'));
        m_server.on("/feed", StandInAnswer::ok(QByteArray(101, 'd')));
        QCOMPARE(documentAt("/feed"), QStringLiteral("The update server sends more than it should."));
    }

    void aFileIsWrittenAndToldOf() {
        m_server.on("/file", StandInAnswer::ok("payload"));
        QCOMPARE(fileAt(m_server.url(QStringLiteral("/file")), 7), QStringLiteral("payload"));
        QCOMPARE(fileAt(m_server.url(QStringLiteral("/file")), 6),
                 QStringLiteral("The update server sends more than it should."));
        QCOMPARE(fileAt(m_server.url(QStringLiteral("/file")), 8),
                 QStringLiteral("The update server sends less than it should."));
        const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
        QCOMPARE(fileAt(m_server.url(QStringLiteral("/file")), 7, full.get()),
                 QStringLiteral("The update cannot be saved: the disk is full."));
        qint64 received = 0;
        const FileDescriptor null(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        const Task<> fetching = m_download.file({.url = m_server.url(QStringLiteral("/file")),
                                                 .descriptor = null.get(),
                                                 .length = 7,
                                                 .progress = [&](qint64 count) { received = count; }});
        await(fetching);
        QCOMPARE(received, qint64(7));
    }

    void aFailureIsASentence_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char* name, const StandInAnswer& answer, const char* sentence) {
            QTest::newRow(name) << answer << QString::fromLatin1(sentence);
        };
        row("not found", StandInAnswer::status(404, "nothing"), "The update server reports an error (404).");
        row("no HTTP", StandInAnswer::raw("220 mail.example ESMTP\r\n"), "The update server's answer makes no sense.");
        row("broken off", StandInAnswer::ok("ab").cutShort(1, Ending::reset),
            "The connection to the update server broke off.");
        row("to http", StandInAnswer::redirect(301, "http://localhost/"),
            "The update is not to be had over a secure connection.");
        row("in circles", StandInAnswer::redirect(301, "/fault"), "The update server leads in circles.");
    }

    void aFailureIsASentence() {
        QFETCH(StandInAnswer, answer);
        QFETCH(QString, sentence);
        m_server.on("/fault", answer);
        QCOMPARE(documentAt("/fault"), sentence);
        QCOMPARE(fileAt(m_server.url(QStringLiteral("/fault")), 2), sentence);
    }

    void aServerThatIsNotThereOrNotItselfIsSaidSo() {
        QCOMPARE(documentAt(QUrl(QStringLiteral("https://localhost:1/"))),
                 QStringLiteral("The update server cannot be reached."));
        QCOMPARE(documentAt(QUrl(QStringLiteral("https://velisk.invalid/"))),
                 QStringLiteral("The update server cannot be found. Is this computer online?"));
        QCOMPARE(documentAt(QUrl(QStringLiteral("http://localhost/"))),
                 QStringLiteral("The update is not to be had over a secure connection."));
        const StandInServer stranger(StandInServer::certificatePath("stranger"));
        QCOMPARE(documentAt(stranger.url(QStringLiteral("/"))),
                 QStringLiteral("The connection to the update server is not secure."));
    }
};

QTEST_GUILESS_MAIN(UpdateDownloadTest)
#include "UpdateDownloadTest.moc"

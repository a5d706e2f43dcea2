#pragma once

#include "Chain/NetworkClient.h"
#include "Support/FileDescriptor.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"
#include "TorvaneKitTests/Chain/Fetch.h"

#include <QTemporaryDir>

#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <optional>

namespace torvane {

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

/// Bytes that differ from place to place.
inline QByteArray payload(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

/// A file to download into, and the server to download from.
struct DownloadScene {
    StandInServer server;
    QTemporaryDir directory;
    QString path = directory.filePath(QStringLiteral("payload"));
    FileDescriptor file{-1};

    DownloadScene() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        server.on("/silent", StandInAnswer::silent());
        server.on("/short", StandInAnswer::ok("12345"));
    }

    /// Both as if new, and no connection to one from the other.
    void reset() {
        NetworkClient::dropPooledConnections();
        server.clearRequests();
        file =
            FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    }

    QUrl url(const char* at) const { return server.url(QLatin1String(at)); }

    FileDownload download(const char* at, qint64 length) const {
        return {.url = url(at), .descriptor = file.get(), .length = length};
    }

    QByteArray written() const { return TestFiles::contentOf(path); }
};

} // namespace torvane

#pragma once

#include "Chain/NetworkFailure.h"
#include "Support/Async.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <utility>

namespace torvane {

/// How a GET deals with a remembered answer (RFC 9111).
enum class CachePolicy {
    useProtocol, // A fresh one is delivered without asking, a stale one after the server confirmed it.
    revalidate,  // The server, and every cache on the way, is asked in any case.
};

/// Most bytes of an answer's body, decoded: far above what honest servers send, far below what hurts.
inline constexpr qsizetype relayBodyLimit = qsizetype{16} * 1024 * 1024;
inline constexpr qsizetype rpcBodyLimit = qsizetype{4} * 1024 * 1024;

/// A request as its caller builds it.
struct Request final {
    QUrl url;                                           // https only
    QByteArray method{};                                // empty: GET
    QByteArray body{};                                  // what is sent
    QList<std::pair<QByteArray, QByteArray>> headers{}; // "User-Agent" is replaced
    std::chrono::milliseconds timeout{60000};           // the longest time in which nothing arrives
    qsizetype bodyLimit = relayBodyLimit;               // most bytes of the answer's body, decoded
    CachePolicy cachePolicy = CachePolicy::useProtocol;
};

/// A file as its caller wants it to be fetched.
struct FileDownload final {
    QUrl url;       // https only
    int descriptor; // of a regular file, where writing is to begin; its owner's, who may close it when the task has
                    // gone
    qint64 length;  // what the body must have, bytes
    std::function<void(qint64 written)> progress{}; // from the loop; called once more with the whole length at the end
    std::chrono::milliseconds timeout{30000};       // the longest time in which nothing arrives
};

/// The one doorway to HTTPS: HTTP/1.1, connections and TLS sessions kept for reuse, gzip, driven by the main loop.
/// Main thread only.
namespace NetworkClient {

/// Loads what all requests need, away from the main thread. The first request waits for it otherwise.
Task<> prepare();

/// Yields the body of a 2xx answer. Throws NetworkFailure for any other answer, TransportFailure where there is none.
/// Destroying the task cancels the request. The redirects of a GET are followed, to https alone; those of other methods
/// are the failure that their status code says. No request lasts longer than a minute. Writes one line to the log.
Task<QByteArray> request(Request request);

/// Writes the body of a 2xx answer into a file, as it is sent: no encoding is asked for, none undone, and nothing is
/// remembered. Ends once the last byte has been handed to the file system and no descriptor of ours is left. Throws
/// like `request`; a body that is longer than said ends at the first byte too many, a shorter one is a failure too. The
/// disk is never waited for here: when it is slow, the server has to wait. None lasts longer than an hour. One line in
/// the log.
Task<> download(FileDownload download);

/// What is remembered of this address, and of where it was redirected to, is not confirmed again but fetched anew: for
/// whoever finds that a body makes no sense. HTTP cannot tell a body that was cut short before it was compressed from a
/// whole one.
void forget(const QUrl& url);

/// The next requests make connections of their own: for whoever learns that the network changed or the machine slept.
/// After a time-out this is done without being asked.
void dropPooledConnections();

} // namespace NetworkClient

} // namespace torvane

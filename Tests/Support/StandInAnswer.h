#pragma once

#include <QByteArray>
#include <QList>

#include <chrono>
#include <utility>

namespace torvane {

/// What a stand-in server puts on the wire, told as a sentence:
///     StandInAnswer::ok(body).gzipped().dripped(1, 50ms)
///     StandInAnswer::status(503, "busy").header("Retry-After", "9")
///     StandInAnswer::ok(body).cutShort(100, StandInAnswer::Ending::reset)
struct StandInAnswer final {
    /// What follows the last byte.
    enum class Ending {
        keepAlive,      // the connection waits for the next request
        closeNotify,    // an orderly TLS close
        abruptClose,    // TCP ends without TLS having said so
        reset,          // TCP resets
        silence,        // nothing: the connection stays open and dumb
        endlessFilling, // `filling` again and again
    };

    int code = 200;
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray head; // Replaces the status line and all headers where it is not empty.
    bool isChunked = false;
    bool hasLength = true;
    qsizetype bytesPerStep = 0; // 0: as fast as the connection takes them
    std::chrono::milliseconds step{0};
    qsizetype sent = -1; // How many bytes of the whole answer are sent before the ending; -1: all
    Ending ending = Ending::keepAlive;
    QByteArray filling;

    static StandInAnswer ok(const QByteArray& body);
    static StandInAnswer status(int code, const QByteArray& body = {});
    static StandInAnswer redirect(int code, const QByteArray& location);

    /// Exactly these bytes, then silence.
    static StandInAnswer raw(const QByteArray& bytes);

    /// Nothing, while the connection stays open.
    static StandInAnswer silent();

    /// A good head, then a body without length or end.
    static StandInAnswer endlessBody();

    /// A status line, then header fields without end.
    static StandInAnswer endlessHead();

    StandInAnswer header(const QByteArray& name, const QByteArray& value) const;

    /// The body compressed, and said so.
    StandInAnswer gzipped() const;

    /// The body in chunks of 64 bytes.
    StandInAnswer chunked() const;

    /// The body without a length: it ends where the connection ends.
    StandInAnswer withoutLength() const;

    /// So many bytes each so many milliseconds, the head included.
    StandInAnswer dripped(qsizetype bytes, std::chrono::milliseconds every) const;

    /// The head and so many bytes of the body, then this ending.
    StandInAnswer cutShort(qsizetype bytes, Ending how) const;

    /// So many bytes of the head, then this ending.
    StandInAnswer cutShortInHead(qsizetype bytes, Ending how) const;

    /// The whole answer, "Connection: close", and an orderly close.
    StandInAnswer closing() const;

    /// The answer's bytes as they go out, the ending apart. An answer to HEAD has no body.
    QByteArray wire(bool isHead) const;

private:
    QByteArray headBytes() const;
    QByteArray bodyBytes() const;
};

/// `bytes` as a gzip file (RFC 1952).
QByteArray gzip(const QByteArray& bytes);

} // namespace torvane

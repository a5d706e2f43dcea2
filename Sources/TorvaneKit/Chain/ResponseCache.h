#pragma once

#include "Chain/HTTPMessage.h"

#include <QDateTime>

#include <optional>

namespace torvane {

/// An answer kept for later, with what decides how long it may be used (RFC 9111).
struct RememberedAnswer final {
    QByteArray key;
    QUrl url;
    QUrl askedFor; // the address whose caller last had it: another one where redirects lie between
    Answer answer;
    QDateTime askedAt;
    QDateTime answeredAt;
};

/// Whether it can be used at this time without asking the server (RFC 9111, 4.2). Explicit max-age alone makes an
/// answer fresh: no heuristics, no Expires. An answer from the future is stale: the clock went backwards since.
bool isFresh(const RememberedAnswer& remembered, const QDateTime& now);

/// The fields that ask whether the remembered answer still holds (RFC 9111, 4.3.1).
HeaderFields conditions(const RememberedAnswer& remembered);

/// Whether a request may be answered from memory at all: a GET whose caller does not speak of caching himself.
bool isCacheable(const Hop& hop);

/// A private cache of GET answers in memory, bounded in number and bytes; the one used longest ago goes first.
class ResponseCache final {
public:
    ResponseCache(qsizetype mostAnswers, qsizetype mostBytes);

    std::optional<RememberedAnswer> find(const Hop& hop);

    /// Takes what the server said to this hop, and says what the caller gets: a 304 to our own condition becomes the
    /// remembered answer with its freshness renewed; a 200 is remembered if it may be.
    Answer settle(const Hop& hop, const std::optional<RememberedAnswer>& remembered, const Answer& answer,
                  const QDateTime& askedAt, const QDateTime& now);

    /// Drops what callers were given for this address, whichever server it came from.
    void forget(const QUrl& askedFor);

    /// A write to an address makes what is remembered of it doubtful (RFC 9111, 4.4).
    void invalidate(const QUrl& url);

private:
    Answer renew(RememberedAnswer remembered, const Answer& notModified, const QDateTime& askedAt,
                 const QDateTime& now);
    void remember(const RememberedAnswer& fresh);
    void drop(const QByteArray& key);

    qsizetype m_mostAnswers;
    qsizetype m_mostBytes;
    QList<RememberedAnswer> m_answers; // The one used last comes last.
};

} // namespace torvane

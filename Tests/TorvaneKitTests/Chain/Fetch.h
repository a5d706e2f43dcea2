#pragma once

#include "Chain/NetworkClient.h"

#include <QTest>

#include <optional>

namespace torvane {

/// One request on its way, and what became of it in words that a table can hold: the body in quotes, "http 404",
/// "timed out", "connection 60" with libcurl's code.
class Fetch final {
public:
    explicit Fetch(const Request& request) { m_scope.emplace().run(run(request, m_outcome)); }

    Fetch(const Fetch&) = delete;
    Fetch& operator=(const Fetch&) = delete;

    bool isDone() const { return !m_outcome.isNull(); }

    const QString& outcome() const { return m_outcome; }

    void cancel() { m_scope.reset(); }

    /// Waits for the end and says it.
    static QString outcomeOf(const Request& request) {
        const Fetch fetch(request);
        const bool isDone = QTest::qWaitFor([&] { return fetch.isDone(); }, 30000);
        return isDone ? fetch.outcome() : QStringLiteral("still on its way");
    }

    static QString outcomeOf(const QUrl& url) { return outcomeOf(Request{.url = url}); }

    static QString words(const TransportFailure& failure) {
        using enum TransportFailure::Cause;
        switch (failure.cause()) {
        case timedOut:
            return QStringLiteral("timed out");
        case cancelled:
            return QStringLiteral("cancelled");
        case tooLarge:
            return QStringLiteral("too large");
        case notSecure:
            return QStringLiteral("not secure");
        case tooManyRedirects:
            return QStringLiteral("too many redirects");
        case invalidRequest:
            return QStringLiteral("invalid request");
        case tooShort:
            return QStringLiteral("too short");
        case disk:
            return QStringLiteral("disk: ") + QString::fromUtf8(failure.what());
        case connection:
            break;
        }
        return QLatin1String("connection ") + QLatin1String(QByteArray::number(failure.curlCode()));
    }

private:
    static Task<> run(Request request, QString& outcome) {
        try {
            Task<QByteArray> fetching = NetworkClient::request(request);
            const QByteArray body = co_await fetching;
            outcome = QLatin1Char('"') + QString::fromUtf8(body) + QLatin1Char('"');
        } catch (const NetworkFailure& failure) {
            outcome = QLatin1String("http ") + QLatin1String(QByteArray::number(failure.code()));
        } catch (const TransportFailure& failure) {
            outcome = words(failure);
        }
    }

    QString m_outcome;
    std::optional<TaskScope> m_scope; // Last, so that it goes first: the frame writes to the outcome.
};

} // namespace torvane

#include "Chain/NetworkClient.h"

#include "Chain/CurlSession.h"
#include "Chain/FileSink.h"
#include "Chain/NetworkLimits.h"
#include "Chain/RequestLog.h"
#include "Chain/ResponseCache.h"
#include "Chain/Transfer.h"
#include "Model/Config.h"
#include "Support/Clock.h"
#include "Support/NextTurn.h"

#include <optional>

namespace torvane {

namespace {

ResponseCache& cache() {
    static ResponseCache answers(NetworkLimits::mostAnswers, NetworkLimits::mostAnswerBytes);
    return answers;
}

Hop firstHop(const Request& request) {
    HeaderFields headers = request.headers;
    headers.removeIf([](const std::pair<QByteArray, QByteArray>& field) {
        return field.first.compare("User-Agent", Qt::CaseInsensitive) == 0;
    });
    headers.emplaceBack("User-Agent", "torvane/" + Config::currentVersion().toLatin1() + " (macOS)");
    return {.url = request.url,
            .method = request.method.isEmpty() ? QByteArray("GET") : request.method,
            .body = request.body,
            .headers = headers,
            .idleLimit = request.timeout,
            .deadline = QDeadlineTimer(NetworkLimits::totalDeadline),
            .bodyLimit = request.bodyLimit,
            .askedFor = request.url};
}

Hop firstHop(const FileDownload& download, FileSink& sink) {
    Hop hop = firstHop(Request{.url = download.url,
                               .headers = {{"Accept-Encoding", "identity"}},
                               .timeout = download.timeout,
                               .bodyLimit = rpcBodyLimit}); // Of what explains a failure.
    hop.deadline = QDeadlineTimer(NetworkLimits::downloadDeadline);
    hop.sink = &sink;
    return hop;
}

void requireSendable(const Hop& hop) {
    using enum TransportFailure::Cause;
    if (!hop.url.isValid() || !isSendable(hop.method, hop.headers))
        throw TransportFailure(invalidRequest, "not a request that can be sent");
    if (hop.url.scheme() != QLatin1String("https") || hop.url.host().isEmpty())
        throw TransportFailure(notSecure, "not an https address");
}

/// The hop as it is sent: with the question whether the remembered answer still holds.
Hop conditional(const Hop& hop, const std::optional<RememberedAnswer>& remembered, CachePolicy policy) {
    Hop asked = hop;
    if (remembered)
        asked.headers.append(conditions(*remembered));
    if (policy == CachePolicy::revalidate)
        asked.headers.emplaceBack("Cache-Control", "no-cache"); // For the caches on the way (RFC 9111, 5.2.1.4).
    return asked;
}

Task<Answer> transferred(const Hop& hop) {
    Transfer transfer(hop);
    Answer answer = co_await transfer;
    if (hop.method != "GET" && hop.method != "HEAD" && answer.status >= 200 && answer.status < 400)
        cache().invalidate(hop.url);
    co_return answer;
}

/// One server's answer, from memory where the protocol allows it.
Task<Answer> ask(const Hop& hop, CachePolicy policy) {
    requireSendable(hop);
    if (!isCacheable(hop)) {
        Task<Answer> uncached = transferred(hop);
        Answer answer = co_await uncached;
        co_return answer;
    }
    const std::optional<RememberedAnswer> remembered = cache().find(hop);
    const QDateTime askedAt = Clock::now();
    if (remembered && policy == CachePolicy::useProtocol && isFresh(*remembered, askedAt)) {
        NextTurn turn; // Whoever awaits must not find out by the order of events that nothing was sent.
        co_await turn;
        co_return remembered->answer;
    }
    const Hop asked = conditional(hop, remembered, policy);
    Task<Answer> exchange = transferred(asked);
    const Answer answer = co_await exchange;
    co_return cache().settle(hop, remembered, answer, askedAt, Clock::now());
}

/// Redirects are followed here and not by libcurl: each server is trusted, and each answer remembered, for itself.
Task<Answer> askAlongRedirects(Hop hop, CachePolicy policy) {
    for (int redirects = 0;; ++redirects) {
        Task<Answer> exchange = ask(hop, policy);
        Answer answer = co_await exchange;
        const QUrl target = redirectTarget(hop, answer);
        if (target.isEmpty())
            co_return answer;
        if (redirects == NetworkLimits::mostRedirects)
            throw TransportFailure(TransportFailure::Cause::tooManyRedirects, "redirected too often");
        hop = redirected(hop, target);
    }
}

bool isSuccess(const Answer& answer) {
    return answer.status >= 200 && answer.status <= 299;
}

} // namespace

Task<> NetworkClient::prepare() {
    const auto load = [] { return &curl(); };
    co_await detached(load);
}

Task<QByteArray> NetworkClient::request(Request request) {
    RequestLog log(request.method, request.url);
    Task<Answer> exchange = askAlongRedirects(firstHop(request), request.cachePolicy);
    const Answer answer = co_await exchange;
    log.write(answer.body.size(), isSuccess(answer));
    if (!isSuccess(answer))
        throw NetworkFailure::http(answer.status);
    co_return answer.body;
}

Task<> NetworkClient::download(FileDownload download) {
    RequestLog log("GET", download.url);
    FileSink sink(download.descriptor, download.length, download.progress);
    Task<Answer> exchange = askAlongRedirects(firstHop(download, sink), CachePolicy::useProtocol);
    const Answer answer = co_await exchange;
    if (!isSuccess(answer)) {
        log.write(answer.body.size(), false);
        throw NetworkFailure::http(answer.status);
    }
    co_await sink;
    log.write(sink.size(), true);
}

void NetworkClient::forget(const QUrl& url) {
    cache().forget(url);
}

void NetworkClient::dropPooledConnections() {
    if (CurlSession* session = CurlSession::instance())
        session->dropPooledConnections();
}

} // namespace torvane

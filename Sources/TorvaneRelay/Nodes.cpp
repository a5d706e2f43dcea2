#include "Nodes.h"

#include "Chain/NetworkClient.h"

#include <QUrl>

#include <algorithm>
#include <chrono>

namespace torvane {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds timeForARun = 60s; // A network that answers slowly must not hold up the others for ever.
constexpr qsizetype longestReason = 120;
constexpr qint64 revertCode = 3;
constexpr qint64 unknownMethodCode = -32601;

/// A stranger's words, fit for one line of a terminal.
QString inOneLine(QString text) {
    const auto isPrintable = [](QChar c) { return c.isPrint(); };
    std::replace_if(text.begin(), text.end(), std::not_fn(isPrintable), QLatin1Char(' '));
    return text.simplified().left(longestReason);
}

const JSONRPCError* remoteErrorOf(const std::exception& failure) {
    const auto* answered = dynamic_cast<const JSONRPCFailure*>(&failure);
    return answered && answered->remoteError() ? &*answered->remoteError() : nullptr;
}

QString reasonOf(const std::exception& failure) {
    if (const JSONRPCError* error = remoteErrorOf(failure))
        return QStringLiteral("error %1, %2").arg(QString::number(error->code), inOneLine(error->message));
    return inOneLine(QString::fromUtf8(failure.what()));
}

} // namespace

namespace detail {

bool isRevert(const JSONRPCFailure& failure) {
    const std::optional<JSONRPCError>& error = failure.remoteError();
    return error && (error->code == revertCode || error->message.contains(QLatin1String("revert")));
}

} // namespace detail

Nodes::Nodes(RequestGate& gate, const QStringList& endpoints)
    : m_gate(gate)
    , m_deadline(timeForARun) {
    for (const QString& endpoint : endpoints)
        m_nodes.append({.endpoint = endpoint});
}

QStringList Nodes::endpoints() const {
    QStringList left;
    for (const Node& node : m_nodes) {
        if (isLeft(node))
            left.append(node.endpoint);
    }
    return left;
}

QString Nodes::troubles() const {
    QStringList reasons;
    for (const Node& node : m_nodes) {
        if (!node.trouble.isEmpty())
            reasons.append(QUrl(node.endpoint).host() + QStringLiteral(": ") + node.trouble);
    }
    return reasons.join(QStringLiteral("; "));
}

bool Nodes::isLeft(const Node& node) const {
    return node.failures < detail::wholeFailure;
}

void Nodes::note(Node& node, const std::exception& failure, int weight) {
    node.trouble = reasonOf(failure);
    const JSONRPCError* error = remoteErrorOf(failure);
    const bool isUnknown = error && error->code == unknownMethodCode;
    const bool answersOtherQuestions = isUnknown || dynamic_cast<const NoContract*>(&failure);
    if (!answersOtherQuestions || weight == detail::wholeFailure)
        node.failures += weight;
}

Task<QByteArray> Nodes::post(qsizetype index, QByteArray body) {
    const QUrl url(m_nodes[index].endpoint);
    if (!isLeft(m_nodes[index]))
        throw detail::NodeLeftOut();
    RequestGate::Place place(m_gate, url.authority());
    co_await place;
    if (!isLeft(m_nodes[index])) // By now.
        throw detail::NodeLeftOut();
    if (m_deadline.hasExpired())
        throw TransportFailure(TransportFailure::Cause::timedOut, "no time left for this network");
    Request request;
    request.url = url;
    request.method = "POST";
    request.body = body;
    request.headers = {{"Content-Type", "application/json"}};
    request.timeout = 10s;
    request.bodyLimit = rpcBodyLimit;
    Task<QByteArray> call = NetworkClient::request(request);
    const QByteArray answer = co_await call;
    co_return answer;
}

} // namespace torvane

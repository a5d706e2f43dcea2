#pragma once

#include "Chain/JSONRPC.h"
#include "NodeFailures.h"
#include "RequestGate.h"
#include "Support/Async.h"

#include <QDeadlineTimer>
#include <QList>
#include <QString>
#include <QStringList>

#include <exception>
#include <functional>

namespace torvane {

/// One network's nodes for one run. A question goes to them in order until one gives a good answer. A node that failed
/// twice is not asked again.
class Nodes final {
public:
    Nodes(RequestGate& gate, const QStringList& endpoints);

    /// What a good answer must also fulfil; throws where it does not.
    template <class Result>
    using Check = std::function<void(const Result&)>;

    /// Throws CallReverted, or NodesFailure when no node is left.
    template <class Result, class Params>
    Task<Result> ask(QString method, Params params, Check<Result> check = {});

    /// Asks each node that is left. One whose answer is not good is not asked again.
    template <class Result, class Params>
    Task<> askEach(QString method, Params params, Check<Result> check);

    /// The addresses of the nodes that are left.
    QStringList endpoints() const;

    /// What went wrong last, at each node where something did.
    QString troubles() const;

private:
    struct Node {
        QString endpoint;
        int failures = 0;
        QString trouble{};
    };

    template <class Result>
    Task<Result> askNode(qsizetype index, QByteArray body, Check<Result> check);
    Task<QByteArray> post(qsizetype index, QByteArray body);
    bool isLeft(const Node& node) const;
    void note(Node& node, const std::exception& failure, int weight);

    RequestGate& m_gate;
    QList<Node> m_nodes;
    QDeadlineTimer m_deadline;
};

namespace detail {

/// Whether the node said that the contract refused the call.
bool isRevert(const JSONRPCFailure& failure);

inline constexpr int wholeFailure = 2;

/// The node failed too often while the question waited for its turn.
struct NodeLeftOut {};

} // namespace detail

template <class Result>
Task<Result> Nodes::askNode(qsizetype index, QByteArray body, Check<Result> check) {
    Task<QByteArray> call = post(index, body);
    const QByteArray answer = co_await call;
    try {
        const Result result = JSON::decode<JSONRPCResponse<Result>>(answer).value();
        if (check)
            check(result);
        co_return result;
    } catch (const JSONRPCFailure& failure) {
        if (detail::isRevert(failure))
            throw CallReverted();
        throw;
    }
}

template <class Result, class Params>
Task<Result> Nodes::ask(QString method, Params params, Check<Result> check) {
    const QByteArray body = JSON::encode(JSONRPCRequest(1, method, params));
    for (qsizetype index = 0; index < m_nodes.size(); ++index) {
        try {
            Task<Result> call = askNode<Result>(index, body, check);
            const Result result = co_await call;
            co_return result;
        } catch (const detail::NodeLeftOut&) {
        } catch (const CallReverted&) {
            throw;
        } catch (const std::exception& failure) {
            note(m_nodes[index], failure, 1); // The next node's turn.
        }
    }
    throw NodesFailure(troubles());
}

template <class Result, class Params>
Task<> Nodes::askEach(QString method, Params params, Check<Result> check) {
    const QByteArray body = JSON::encode(JSONRPCRequest(1, method, params));
    for (qsizetype index = 0; index < m_nodes.size(); ++index) {
        try {
            Task<Result> call = askNode<Result>(index, body, check);
            const Result result = co_await call;
            static_cast<void>(result); // The check has taken what it wanted.
        } catch (const detail::NodeLeftOut&) {
        } catch (const std::exception& failure) {
            note(m_nodes[index], failure, detail::wholeFailure);
        }
    }
}

} // namespace torvane

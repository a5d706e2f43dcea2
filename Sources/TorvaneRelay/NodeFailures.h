#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace torvane {

/// None of a network's nodes gave an answer that can be used; says why, node by node.
class NodesFailure final : public std::exception {
public:
    explicit NodesFailure(const QString& reasons)
        : m_what(reasons.toUtf8()) {}

    const char* what() const noexcept override { return m_what.constData(); }

private:
    QByteArray m_what;
};

/// The contract itself refused the call: every node would say so.
class CallReverted final : public std::exception {
public:
    const char* what() const noexcept override { return "the contract refused the call"; }
};

/// The address has no contract. It is the next node's turn, but no reason to think ill of this one: more likely the
/// table is wrong.
class NoContract final : public std::exception {
public:
    const char* what() const noexcept override { return "there is no such contract"; }
};

} // namespace torvane

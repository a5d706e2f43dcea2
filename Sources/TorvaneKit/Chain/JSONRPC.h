#pragma once

#include "Support/JSON.h"

#include <QString>

#include <exception>
#include <optional>
#include <utility>

/// The JSON-RPC 2.0 dialect of Ethereum's nodes.
namespace torvane {

/// A quantity as nodes write it: "0x" and hexadecimal digits, at most 64 bits. Usually wei.
struct HexQuantity {
    quint64 value = 0;

    /// The value in gwei, unrounded.
    double gwei() const { return static_cast<double>(value) / 1e9; }

    /// Throws DecodingError "Invalid hexadecimal quantity".
    static HexQuantity fromText(const QString& text);

    /// Without leading zeros, in lower case.
    QString toText() const;

    bool operator==(const HexQuantity&) const = default;
};

/// No parameters: an empty array.
struct EmptyRPCParams {
    std::tuple<> elements() const { return {}; }
};

template <class Params>
struct JSONRPCRequest {
    JSONRPCRequest(qint64 requestId, QString requestMethod, Params requestParams)
        : id(requestId)
        , method(std::move(requestMethod))
        , params(std::move(requestParams)) {}

    QString jsonrpc = QStringLiteral("2.0");
    qint64 id;
    QString method;
    Params params;
    static constexpr std::tuple keys{
        Key{"jsonrpc", &JSONRPCRequest::jsonrpc},
        Key{"id", &JSONRPCRequest::id},
        Key{"method", &JSONRPCRequest::method},
        Key{"params", &JSONRPCRequest::params},
    };
};

/// The node's own account of what went wrong.
struct JSONRPCError {
    qint64 code;
    QString message;
    static constexpr std::tuple keys{Key{"code", &JSONRPCError::code}, Key{"message", &JSONRPCError::message}};

    bool operator==(const JSONRPCError&) const = default;
};

/// A well-formed answer without a result: the node answered with an error, or with neither.
class JSONRPCFailure final : public std::exception {
public:
    static JSONRPCFailure remote(JSONRPCError error) { return JSONRPCFailure(std::move(error)); }

    static JSONRPCFailure missingResult() { return JSONRPCFailure(std::nullopt); }

    /// The node's error; none where the result is missing.
    const std::optional<JSONRPCError>& remoteError() const { return m_remote; }

    const char* what() const noexcept override { return m_remote ? "The node answered with an error" : "No result"; }

    bool operator==(const JSONRPCFailure& other) const { return m_remote == other.m_remote; }

private:
    explicit JSONRPCFailure(std::optional<JSONRPCError> remote)
        : m_remote(std::move(remote)) {}

    std::optional<JSONRPCError> m_remote;
};

/// An answer. Its id is not read: a connection carries one question at a time.
template <class Result>
struct JSONRPCResponse {
    std::optional<Result> result;
    std::optional<JSONRPCError> error;
    static constexpr std::tuple keys{Key{"result", &JSONRPCResponse::result}, Key{"error", &JSONRPCResponse::error}};

    /// The result. Throws JSONRPCFailure where there is an error, even beside a result, or neither.
    Result value() const {
        if (error)
            throw JSONRPCFailure::remote(*error);
        if (!result)
            throw JSONRPCFailure::missingResult();
        return *result;
    }
};

} // namespace torvane

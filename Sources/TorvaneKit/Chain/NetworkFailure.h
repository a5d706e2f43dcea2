#pragma once

#include <QByteArray>

#include <exception>

namespace torvane {

/// An answer that is not a success.
class NetworkFailure final : public std::exception {
public:
    enum class Case { http };

    /// The answer's status code was not 2xx; 0 when what arrived is no HTTP at all.
    static NetworkFailure http(int code) { return NetworkFailure(Case::http, code); }

    Case kind() const noexcept { return m_kind; }

    int code() const noexcept { return m_code; }

    const char* what() const noexcept override { return m_text.constData(); }

private:
    NetworkFailure(Case kind, int code)
        : m_kind(kind)
        , m_code(code)
        , m_text("HTTP status " + QByteArray::number(code)) {}

    Case m_kind;
    int m_code;
    QByteArray m_text;
};

/// No answer, or not all of it: whatever went wrong below HTTP.
class TransportFailure final : public std::exception {
public:
    enum class Cause {
        timedOut,         // the idle limit or the total deadline passed
        cancelled,        // the application is ending
        tooLarge,         // the body or the head passed its limit
        notSecure,        // the address, or where it redirects to, is not https
        tooManyRedirects, //
        invalidRequest,   // the caller's address, method or headers cannot be sent
        tooShort,         // a download ended before its length
        disk,             // a download cannot be written down
        connection,       // everything else; see curlCode
    };

    TransportFailure(Cause cause, int curlCode, const QByteArray& text)
        : m_cause(cause)
        , m_curlCode(curlCode)
        , m_text(text) {}

    TransportFailure(Cause cause, const QByteArray& text)
        : TransportFailure(cause, 0, text) {}

    Cause cause() const noexcept { return m_cause; }

    /// libcurl's CURLcode, as it came; 0 where the failure is found on our side.
    int curlCode() const noexcept { return m_curlCode; }

    const char* what() const noexcept override { return m_text.constData(); }

private:
    Cause m_cause;
    int m_curlCode;
    QByteArray m_text;
};

} // namespace torvane

#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QList>
#include <QUrl>

#include <chrono>
#include <utility>

namespace torvane {

class FileSink;

using HeaderFields = QList<std::pair<QByteArray, QByteArray>>;

/// The value of a field, its name in any case; the values of several joined by ", " (RFC 9110, 5.3). Null where none
/// is.
QByteArray headerValue(const HeaderFields& fields, QByteArrayView name);

/// One request to one server: what a request consists of when redirects are taken apart.
struct Hop final {
    QUrl url;
    QByteArray method;
    QByteArray body;
    HeaderFields headers;
    std::chrono::milliseconds idleLimit;
    QDeadlineTimer deadline;
    qsizetype bodyLimit;      // bytes, after decoding
    QUrl askedFor{};          // the address that the caller named, before any redirect
    FileSink* sink = nullptr; // takes the body of a success, as it comes, in place of memory
};

/// One server's answer, its body decoded.
struct Answer final {
    int status = 0; // 0: what arrived is not HTTP
    HeaderFields headers;
    QByteArray body;
};

/// The fields of a head: lines ended by CR LF, the status line first. What follows the empty line is left out: those
/// are trailers, which must not pass for fields of the head (RFC 9110, 6.5.1).
HeaderFields parseHead(const QByteArray& head);

/// Whether method and headers can be sent as they are: tokens, and no line breaks that would smuggle in other lines.
bool isSendable(const QByteArray& method, const HeaderFields& headers);

/// Where a GET that got this answer goes next; empty when it goes nowhere. Only GET and HEAD are led on: anything else
/// would be sent twice, or turned into a GET.
QUrl redirectTarget(const Hop& hop, const Answer& answer);

/// The same request to another address. Credentials stay with the server that they are for.
Hop redirected(const Hop& hop, const QUrl& target);

} // namespace torvane

#include "Chain/HTTPMessage.h"

#include <algorithm>
#include <array>

namespace torvane {

namespace {

bool isSame(QByteArrayView a, QByteArrayView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// RFC 9110, 5.6.2.
bool isToken(const QByteArray& text) {
    constexpr QByteArrayView marks = "!#$%&'*+-.^_`|~";
    const auto isTokenCharacter = [marks](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || marks.contains(c);
    };
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), isTokenCharacter);
}

bool isRedirect(int status) {
    constexpr std::array redirects{301, 302, 303, 307, 308};
    return std::find(redirects.cbegin(), redirects.cend(), status) != redirects.cend();
}

} // namespace

QByteArray headerValue(const HeaderFields& fields, QByteArrayView name) {
    QByteArray joined;
    for (const auto& [each, value] : fields) {
        if (!isSame(each, name))
            continue;
        joined = joined.isNull() ? value : joined + ", " + value;
    }
    return joined;
}

HeaderFields parseHead(const QByteArray& head) {
    HeaderFields fields;
    for (const QByteArray& line : head.split('\n')) {
        if (line.trimmed().isEmpty())
            break;
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0 || !isToken(line.first(colon)))
            continue; // The status line, and what is no field.
        fields.append({line.first(colon), line.sliced(colon + 1).trimmed()});
    }
    return fields;
}

bool isSendable(const QByteArray& method, const HeaderFields& headers) {
    const auto isSendableField = [](const std::pair<QByteArray, QByteArray>& field) {
        const auto breaksLine = [](char c) { return c == '\r' || c == '\n' || c == '\0'; };
        return isToken(field.first) && std::none_of(field.second.cbegin(), field.second.cend(), breaksLine);
    };
    return isToken(method) && std::all_of(headers.cbegin(), headers.cend(), isSendableField);
}

QUrl redirectTarget(const Hop& hop, const Answer& answer) {
    if (!isRedirect(answer.status) || (hop.method != "GET" && hop.method != "HEAD"))
        return {};
    const QByteArray location = headerValue(answer.headers, "Location");
    return location.isEmpty() ? QUrl() : hop.url.resolved(QUrl::fromEncoded(location));
}

Hop redirected(const Hop& hop, const QUrl& target) {
    Hop next = hop;
    next.url = target;
    if (target.host() == hop.url.host() && target.port(443) == hop.url.port(443))
        return next;
    next.headers.removeIf([](const std::pair<QByteArray, QByteArray>& field) {
        return isSame(field.first, "Authorization") || isSame(field.first, "Cookie");
    });
    return next;
}

} // namespace torvane

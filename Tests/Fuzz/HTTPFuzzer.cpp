#include "Chain/CacheControl.h"
#include "Chain/HTTPMessage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

constexpr std::chrono::seconds mostSeconds{std::int64_t{1} << 31};

void checkCacheControl(QByteArrayView value) {
    const CacheControl control = parseCacheControl(value);
    insist(!control.maxAge || (control.maxAge->count() >= 0 && *control.maxAge <= mostSeconds));
    // One more directive only adds what it says.
    const CacheControl stricter = parseCacheControl(value.toByteArray() + ",no-store");
    const bool endsQuoted = value.contains('"');
    insist(endsQuoted || (stricter.noStore && stricter.noCache == control.noCache));
    const CacheControl shorter = parseCacheControl("max-age=0," + value.toByteArray());
    insist(shorter.maxAge == std::chrono::seconds(0));
}

/// Where a redirect leads, and what it takes along: to a stranger, nothing that is secret.
void checkRedirect(const HeaderFields& fields) {
    const Hop hop{QUrl(QStringLiteral("https://relay.example/snapshot.json")),
                  "GET",
                  {},
                  {{"Accept", "*/*"}, {"Authorization", "secret"}, {"cookie", "secret"}},
                  {},
                  {},
                  1};
    const QUrl target = redirectTarget(hop, {302, fields, {}});
    insist(redirectTarget({hop.url, "POST", {}, {}, {}, {}, 1}, {302, fields, {}}).isEmpty());
    insist(redirectTarget(hop, {200, fields, {}}).isEmpty());
    if (target.isEmpty())
        return;
    const Hop next = redirected(hop, target);
    const bool isSame = target.host() == hop.url.host() && target.port(443) == 443;
    insist(headerValue(next.headers, "accept") == "*/*");
    insist(isSame == (headerValue(next.headers, "Authorization") == "secret"));
    insist(isSame == (headerValue(next.headers, "Cookie") == "secret"));
}

void checkField(const std::pair<QByteArray, QByteArray>& field) {
    const auto& [name, value] = field;
    // A carriage return within a value, or a zero, comes in; it must not go out again.
    const bool isPlain = !value.contains('\r') && !value.contains('\0');
    insist(!name.isEmpty() && !value.contains('\n') && value == value.trimmed());
    insist(isSendable("GET", {field}) == isPlain);
    const QByteArray line = name + ": " + value + "\r\n\r\n";
    insist(parseHead(line) == HeaderFields{field});
    if (value.size() < 12)
        parseDeltaSeconds(value);
}

} // namespace

/// Any bytes as the head of an answer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray head(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const HeaderFields fields = parseHead(head);
    for (const auto& field : fields)
        checkField(field);
    insist(parseHead(head + "\r\n\r\nX-Trailer: 1\r\n").size() >= fields.size());
    checkRedirect(fields);
    checkCacheControl(headerValue(fields, "Cache-Control"));
    checkCacheControl(head);
    return 0;
}

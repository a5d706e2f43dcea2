#include "Chain/ResponseCache.h"

#include "Chain/CacheControl.h"

#include <algorithm>
#include <array>

namespace torvane {

namespace {

CacheControl cacheControl(const Answer& answer) {
    return parseCacheControl(headerValue(answer.headers, "Cache-Control"));
}

/// The address and the caller's own header fields: whatever a Vary names is then the same, since all else is constant.
QByteArray keyOf(const Hop& hop) {
    QList<QByteArray> parts;
    for (const auto& [name, value] : hop.headers)
        parts.append(name.toLower() + ':' + value);
    std::sort(parts.begin(), parts.end());
    parts.prepend(hop.url.toEncoded(QUrl::RemoveFragment));
    return parts.join('\n');
}

/// A body that ends where the connection ends may have been cut short without anybody noticing. Remembered, it would be
/// confirmed for ever.
bool hasCertainEnd(const Answer& answer) {
    return !headerValue(answer.headers, "Content-Length").isNull() ||
           !headerValue(answer.headers, "Transfer-Encoding").isNull();
}

bool mayBeRemembered(const Answer& answer) {
    const CacheControl control = cacheControl(answer);
    const bool isUseful = control.maxAge || !headerValue(answer.headers, "ETag").isEmpty() ||
                          !headerValue(answer.headers, "Last-Modified").isEmpty();
    return answer.status == 200 && isUseful && !control.noStore && hasCertainEnd(answer) &&
           !headerValue(answer.headers, "Vary").contains('*');
}

/// The stored fields with those of a 304 in their place (RFC 9111, 3.2), the ones that tell of the body's bytes apart.
HeaderFields updated(const HeaderFields& stored, const HeaderFields& fresh) {
    constexpr std::array<QByteArrayView, 4> ofTheBody{"Content-Length", "Content-Encoding", "Content-Type",
                                                      "Transfer-Encoding"};
    const auto isOfTheBody = [&](const std::pair<QByteArray, QByteArray>& field) {
        return std::any_of(ofTheBody.cbegin(), ofTheBody.cend(),
                           [&](QByteArrayView name) { return field.first.compare(name, Qt::CaseInsensitive) == 0; });
    };
    HeaderFields fields = fresh;
    fields.removeIf(isOfTheBody);
    for (const auto& field : stored) {
        if (headerValue(fresh, field.first).isNull() || isOfTheBody(field))
            fields.append(field);
    }
    return fields;
}

/// Servers that compress on the fly mark the tag of the whole answer as weak, but not that of the 304.
QByteArray opaqueTag(const Answer& answer) {
    const QByteArray tag = headerValue(answer.headers, "ETag");
    return tag.startsWith("W/") ? tag.sliced(2) : tag;
}

} // namespace

bool isFresh(const RememberedAnswer& remembered, const QDateTime& now) {
    const CacheControl control = cacheControl(remembered.answer);
    if (control.noCache || !control.maxAge || now < remembered.answeredAt)
        return false;
    const QByteArray age = headerValue(remembered.answer.headers, "Age");
    const std::optional<std::chrono::seconds> ageThere = parseDeltaSeconds(age);
    if (!age.isNull() && !ageThere)
        return false;
    // From when we asked: the answer may have been made at once and travelled long (RFC 9111, 4.2.3).
    const std::chrono::milliseconds ageHere(remembered.askedAt.msecsTo(now));
    return ageThere.value_or(std::chrono::seconds(0)) + ageHere < *control.maxAge;
}

HeaderFields conditions(const RememberedAnswer& remembered) {
    const QByteArray tag = headerValue(remembered.answer.headers, "ETag");
    const QByteArray date = headerValue(remembered.answer.headers, "Last-Modified");
    HeaderFields fields;
    if (!tag.isEmpty())
        fields.append({"If-None-Match", tag});
    if (!date.isEmpty())
        fields.append({"If-Modified-Since", date});
    return fields;
}

bool isCacheable(const Hop& hop) {
    constexpr std::array<QByteArrayView, 8> ofCaching{
        "If-None-Match", "If-Modified-Since", "If-Match", "If-Unmodified-Since", "If-Range",
        "Range",         "Cache-Control",     "Pragma"};
    return hop.method == "GET" && !hop.sink &&
           std::all_of(ofCaching.cbegin(), ofCaching.cend(),
                       [&](QByteArrayView name) { return headerValue(hop.headers, name).isNull(); });
}

ResponseCache::ResponseCache(qsizetype mostAnswers, qsizetype mostBytes)
    : m_mostAnswers(mostAnswers)
    , m_mostBytes(mostBytes) {}

std::optional<RememberedAnswer> ResponseCache::find(const Hop& hop) {
    const QByteArray key = keyOf(hop);
    const auto found =
        std::find_if(m_answers.begin(), m_answers.end(), [&](const RememberedAnswer& each) { return each.key == key; });
    if (found == m_answers.end())
        return std::nullopt;
    std::rotate(found, found + 1, m_answers.end());
    m_answers.last().askedFor = hop.askedFor;
    return m_answers.last();
}

Answer ResponseCache::settle(const Hop& hop, const std::optional<RememberedAnswer>& remembered, const Answer& answer,
                             const QDateTime& askedAt, const QDateTime& now) {
    if (answer.status == 304 && remembered && !conditions(*remembered).isEmpty())
        return renew(*remembered, answer, askedAt, now);
    if (answer.status != 200)
        return answer;
    const RememberedAnswer fresh{.key = keyOf(hop),
                                 .url = hop.url,
                                 .askedFor = hop.askedFor,
                                 .answer = answer,
                                 .askedAt = askedAt,
                                 .answeredAt = now};
    if (mayBeRemembered(answer))
        remember(fresh);
    else
        drop(fresh.key);
    return answer;
}

Answer ResponseCache::renew(RememberedAnswer remembered, const Answer& notModified, const QDateTime& askedAt,
                            const QDateTime& now) {
    const QByteArray tag = opaqueTag(notModified);
    if (!tag.isEmpty() && tag != opaqueTag(remembered.answer)) {
        drop(remembered.key); // It confirms something else than we asked about; next time we ask for the whole.
        return notModified;
    }
    // An age is that of one answer: without one, the 304 comes from the origin itself.
    remembered.answer.headers.removeIf([](const std::pair<QByteArray, QByteArray>& field) {
        return field.first.compare("Age", Qt::CaseInsensitive) == 0;
    });
    remembered.answer.headers = updated(remembered.answer.headers, notModified.headers);
    remembered.askedAt = askedAt;
    remembered.answeredAt = now;
    if (mayBeRemembered(remembered.answer))
        remember(remembered);
    else
        drop(remembered.key);
    return remembered.answer;
}

void ResponseCache::remember(const RememberedAnswer& fresh) {
    const auto earlier = std::find_if(m_answers.cbegin(), m_answers.cend(),
                                      [&](const RememberedAnswer& each) { return each.key == fresh.key; });
    if (earlier != m_answers.cend() && earlier->askedAt > fresh.askedAt && earlier->askedAt <= fresh.answeredAt)
        return; // Two requests overtook each other: the later question has the newer answer.
    drop(fresh.key);
    if (fresh.answer.body.size() > m_mostBytes)
        return; // It would drive out all others and not stay itself.
    m_answers.append(fresh);
    qsizetype bytes = 0;
    for (const RememberedAnswer& each : m_answers)
        bytes += each.answer.body.size();
    while (m_answers.size() > m_mostAnswers || bytes > m_mostBytes)
        bytes -= m_answers.takeFirst().answer.body.size();
}

void ResponseCache::drop(const QByteArray& key) {
    m_answers.removeIf([&](const RememberedAnswer& each) { return each.key == key; });
}

void ResponseCache::forget(const QUrl& askedFor) {
    m_answers.removeIf([&](const RememberedAnswer& each) { return each.askedFor == askedFor; });
}

void ResponseCache::invalidate(const QUrl& url) {
    m_answers.removeIf([&](const RememberedAnswer& each) { return each.url == url; });
}

} // namespace torvane

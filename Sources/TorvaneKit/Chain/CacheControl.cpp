#include "Chain/CacheControl.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace torvane {

namespace {

constexpr std::int64_t mostSeconds = std::int64_t{1} << 31;

/// The directives of a list: a comma inside a quoted text separates nothing.
QList<QByteArray> directives(QByteArrayView value) {
    QList<QByteArray> found(1);
    bool isQuoted = false;
    bool isEscaped = false;
    for (const char c : value) {
        const bool isQuote = c == '"' && !isEscaped;
        isEscaped = isQuoted && c == '\\' && !isEscaped;
        isQuoted = isQuoted != isQuote;
        if (c == ',' && !isQuoted)
            found.append(QByteArray());
        else
            found.last().append(c);
    }
    return found;
}

QByteArrayView unquoted(QByteArrayView text) {
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.sliced(1, text.size() - 2) : text;
}

void addMaxAge(CacheControl& control, QByteArrayView argument) {
    const std::chrono::seconds age = parseDeltaSeconds(unquoted(argument)).value_or(std::chrono::seconds(0));
    control.maxAge = std::min(age, control.maxAge.value_or(age));
}

} // namespace

std::optional<std::chrono::seconds> parseDeltaSeconds(QByteArrayView text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.isEmpty() || !std::all_of(text.cbegin(), text.cend(), isDigit))
        return std::nullopt;
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isTooLarge = error == std::errc::result_out_of_range || seconds > mostSeconds;
    return std::chrono::seconds(isTooLarge ? mostSeconds : seconds);
}

CacheControl parseCacheControl(QByteArrayView value) {
    CacheControl control;
    for (const QByteArray& directive : directives(value)) {
        const qsizetype equals = directive.indexOf('=');
        const QByteArray name = (equals < 0 ? directive : directive.first(equals)).trimmed().toLower();
        const QByteArray argument = equals < 0 ? QByteArray() : directive.sliced(equals + 1).trimmed();
        if (name == "no-store")
            control.noStore = true;
        else if (name == "no-cache")
            control.noCache = true;
        else if (name == "max-age")
            addMaxAge(control, argument);
    }
    return control;
}

} // namespace torvane

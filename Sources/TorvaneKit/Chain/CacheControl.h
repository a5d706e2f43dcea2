#pragma once

#include <QByteArrayView>

#include <chrono>
#include <optional>

namespace torvane {

/// What a private cache needs to know of a Cache-Control field (RFC 9111, 5.2.2).
struct CacheControl final {
    bool noStore = false;
    bool noCache = false; // Qualified with field names it counts as unqualified, which is the safe side.
    std::optional<std::chrono::seconds> maxAge;
};

/// Reads the field's value. Of several max-age the smallest counts; one that is no number counts as 0, so that the
/// answer is stale at once. Unknown directives are passed over.
CacheControl parseCacheControl(QByteArrayView value);

/// A number of seconds (RFC 9111, 1.2.2): digits alone; too large a one counts as 2^31. Nothing where it is no number.
std::optional<std::chrono::seconds> parseDeltaSeconds(QByteArrayView text);

} // namespace torvane

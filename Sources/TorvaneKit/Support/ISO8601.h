#pragma once

#include <QDateTime>
#include <QStringView>

#include <optional>

namespace torvane {

/// Reads an internet date-time (RFC 3339): date, capital T, time with or without fractional seconds, and the letter Z
/// or an offset from UTC, as in "2025-05-01T12:00:00.123Z" or "2025-05-01T14:00:00+02:00". Anything else gives none, a
/// date without an offset included. The result is in UTC, to the millisecond; finer fractions are cut off.
std::optional<QDateTime> parseInternetDateTime(QStringView text);

} // namespace torvane

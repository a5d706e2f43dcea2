#include "Support/ISO8601.h"

#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// What every accepted text has: a T between date and time, and an offset at the end.
bool looksRight(const QString& text) {
    const bool isUTC = text.endsWith(u'Z');
    const bool hasOffset = text.size() > 6 && text[text.size() - 3] == u':' &&
                           (text[text.size() - 6] == u'+' || text[text.size() - 6] == u'-');
    return text.size() >= 20 && text[10] == u'T' && (isUTC || hasOffset);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<QDateTime> time = parseInternetDateTime(text);
    if (!time)
        return 0;
    insist(looksRight(text));
    insist(time->isValid() && time->timeSpec() == Qt::UTC);
    // What we read can be written and read again, unless the offset moved it out of the four-digit years.
    if (time->date().year() >= 0 && time->date().year() <= 9999)
        insist(parseInternetDateTime(time->toString(Qt::ISODateWithMs)) == time);
    return 0;
}

#include "Support/ISO8601.h"

namespace torvane {

namespace {

bool isDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

/// Reads a text from its start. What is not found is missed for good. A regular expression would do the same, but its
/// engine takes half a megabyte and a compiler into memory for nothing else.
class Reader final {
public:
    explicit Reader(QStringView text)
        : m_rest(text) {}

    bool isDone() const { return !m_isMissed && m_rest.isEmpty(); }

    bool skips(QChar character) {
        if (!m_rest.startsWith(character))
            return false;
        m_rest = m_rest.mid(1);
        return true;
    }

    void expect(QChar character) { m_isMissed |= !skips(character); }

    /// The number of exactly so many digits.
    int number(qsizetype length) {
        int result = 0;
        for (; length > 0 && !m_rest.isEmpty() && isDigit(m_rest.front()); --length, m_rest = m_rest.mid(1))
            result = result * 10 + m_rest.front().digitValue();
        m_isMissed |= length > 0;
        return result;
    }

    /// As many digits as there are, at least one.
    QStringView digits() {
        qsizetype length = 0;
        while (length < m_rest.size() && isDigit(m_rest[length]))
            ++length;
        m_isMissed |= length == 0;
        const QStringView found = m_rest.left(length);
        m_rest = m_rest.mid(length);
        return found;
    }

private:
    QStringView m_rest;
    bool m_isMissed = false;
};

/// The first three digits of a fraction of a second, "5" being 500 ms.
int milliseconds(QStringView fraction) {
    int result = 0;
    for (qsizetype i = 0; i < 3; ++i)
        result = result * 10 + (i < fraction.size() ? fraction[i].digitValue() : 0);
    return result;
}

/// A date, or an invalid one; the calendar is QDate's to know.
QDate date(Reader& reader) {
    const int year = reader.number(4);
    reader.expect(u'-');
    const int month = reader.number(2);
    reader.expect(u'-');
    return QDate(year, month, reader.number(2));
}

struct TimeOfDay {
    QTime time;
    bool isLeapSecond; // RFC 3339 allows it; it is the instant after second 59.
};

TimeOfDay timeOfDay(Reader& reader) {
    const int hour = reader.number(2);
    reader.expect(u':');
    const int minute = reader.number(2);
    reader.expect(u':');
    const int second = reader.number(2);
    const bool isLeapSecond = second == 60;
    const int fraction = reader.skips(u'.') ? milliseconds(reader.digits()) : 0;
    return {QTime(hour, minute, isLeapSecond ? 59 : second, fraction), isLeapSecond};
}

/// East of UTC, in seconds; none where it is more than a day has.
std::optional<int> offset(Reader& reader) {
    if (reader.skips(u'Z'))
        return 0;
    const bool isWest = reader.skips(u'-');
    if (!isWest)
        reader.expect(u'+');
    const int hours = reader.number(2);
    reader.expect(u':');
    const int minutes = reader.number(2);
    if (hours > 23 || minutes > 59)
        return std::nullopt;
    return (isWest ? -1 : 1) * (hours * 3600 + minutes * 60);
}

} // namespace

std::optional<QDateTime> parseInternetDateTime(QStringView text) {
    Reader reader(text);
    const QDate day = date(reader);
    reader.expect(u'T');
    const auto [time, isLeapSecond] = timeOfDay(reader);
    const std::optional<int> eastward = offset(reader);
    if (!reader.isDone() || !day.isValid() || !time.isValid() || !eastward)
        return std::nullopt;
    return QDateTime(day, time, Qt::UTC).addSecs((isLeapSecond ? 1 : 0) - *eastward);
}

} // namespace torvane

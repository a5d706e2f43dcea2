#include "Support/ISO8601.h"

#include <QRegularExpression>

namespace torvane {

namespace {

const QRegularExpression& internetDateTime() {
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral(R"((\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(?:\.(\d+))?(?:Z|([+-])(\d\d):(\d\d)))")));
    return form;
}

/// The first three digits of a fraction of a second, "5" being 500 ms.
int milliseconds(QStringView fraction) {
    int result = 0;
    for (qsizetype i = 0; i < 3; ++i)
        result = result * 10 + (i < fraction.size() ? fraction[i].digitValue() : 0);
    return result;
}

} // namespace

std::optional<QDateTime> parseInternetDateTime(QStringView text) {
    const QRegularExpressionMatch match = internetDateTime().match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&match](int group) { return match.capturedView(group).toInt(); };
    const bool isLeapSecond = number(6) == 60; // RFC 3339 allows it; it is the instant after second 59.
    const QDate date(number(1), number(2), number(3));
    const QTime time(number(4), number(5), isLeapSecond ? 59 : number(6), milliseconds(match.capturedView(7)));
    const int offsetHours = number(9);
    const int offsetMinutes = number(10);
    if (!date.isValid() || !time.isValid() || offsetHours > 23 || offsetMinutes > 59)
        return std::nullopt;
    const int eastward = match.capturedView(8) == u"-" ? -1 : 1;
    const qint64 offset = eastward * (offsetHours * 3600 + offsetMinutes * 60);
    return QDateTime(date, time, Qt::UTC).addSecs((isLeapSecond ? 1 : 0) - offset);
}

} // namespace torvane

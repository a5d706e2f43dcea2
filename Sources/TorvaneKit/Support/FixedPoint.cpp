#include "Support/FixedPoint.h"

#include <QVarLengthArray>

#include <charconv>
#include <cmath>
#include <limits>

namespace torvane {

namespace {

constexpr int precisionOfC = 6;

QString inDigitsOf(const QLocale& locale, QStringView asciiDigits) {
    const char32_t zero = locale.zeroDigit().toUcs4().value(0, U'0'); // Some scripts' digits lie beyond the BMP.
    QString result;
    for (const QChar digit : asciiDigits)
        result += QChar::fromUcs4(zero + (digit.unicode() - u'0'));
    return result;
}

/// The locale groups 64-bit integers and doubles; an integer of more digits is a double's exact value.
QString groupedInteger(const QString& digits, const QLocale& locale) {
    bool fits = false;
    const qulonglong integer = digits.toULongLong(&fits);
    return fits ? locale.toString(integer) : locale.toString(digits.toDouble(), 'f', 0);
}

} // namespace

QString fixedPoint(double value, int precision) {
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (precision < 0)
        precision = precisionOfC;
    QVarLengthArray<char, 64> buffer(std::numeric_limits<double>::max_exponent10 + precision + 4);
    const auto [end, error] = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::fixed, precision);
    Q_ASSERT(error == std::errc());
    return QString::fromLatin1(buffer.constData(), end - buffer.constData());
}

QString grouped(const QString& fixedPoint, const QLocale& locale) {
    const bool isNegative = fixedPoint.startsWith(QLatin1Char('-'));
    const QString magnitude = fixedPoint.mid(isNegative ? 1 : 0);
    if (magnitude.isEmpty() || !magnitude.at(0).isDigit())
        return fixedPoint;
    const qsizetype point = magnitude.indexOf(QLatin1Char('.'));
    QString result = (isNegative ? locale.negativeSign() : QString()) + groupedInteger(magnitude.left(point), locale);
    if (point >= 0)
        result += locale.decimalPoint() + inDigitsOf(locale, QStringView(magnitude).mid(point + 1));
    return result;
}

} // namespace torvane

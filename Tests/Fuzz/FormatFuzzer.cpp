#include "Model/Format.h"
#include "Support/FixedPoint.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// Decimal digits, the last one first.
using Digits = std::vector<unsigned>;

void multiply(Digits& digits, unsigned factor) {
    unsigned carry = 0;
    for (unsigned& digit : digits) {
        carry += digit * factor;
        digit = carry % 10;
        carry /= 10;
    }
    for (; carry > 0; carry /= 10)
        digits.push_back(carry % 10);
}

void multiply(Digits& digits, unsigned factor, int times) {
    for (; times >= 8; times -= 8) // Eight fives, and a digit's worth of them, are well below 2^32.
        multiply(digits, static_cast<unsigned>(std::pow(factor, 8)));
    for (; times > 0; --times)
        multiply(digits, factor);
}

/// All the digits of a number without its sign, exactly, of which this many stand behind the point: a double is a whole
/// number that was doubled or halved so many times, and half of it is five of its tenths.
std::size_t expand(double magnitude, Digits& digits) {
    int exponent = 0;
    auto whole = static_cast<quint64>(std::ldexp(std::frexp(magnitude, &exponent), 53));
    exponent -= 53;
    for (; whole > 0; whole /= 10)
        digits.push_back(static_cast<unsigned>(whole % 10));
    multiply(digits, exponent > 0 ? 2 : 5, std::abs(exponent));
    return exponent < 0 ? static_cast<std::size_t>(-exponent) : 0;
}

/// Whether what is cut off, the lowest digits, is more than half a unit of what stays, or half of one that is odd.
bool roundsUp(const Digits& digits, std::size_t cut) {
    if (cut == 0)
        return false;
    const auto half = digits.cbegin() + static_cast<std::ptrdiff_t>(cut) - 1;
    if (*half != 5)
        return *half > 5;
    return std::any_of(digits.cbegin(), half, [](unsigned digit) { return digit != 0; }) || digits[cut] % 2 == 1;
}

/// The slow twin: long multiplication, and rounding to even as it is taught.
QString slowly(double value, std::size_t precision) {
    if (std::isnan(value))
        return QStringLiteral("nan");
    const QString sign = std::signbit(value) ? QStringLiteral("-") : QString();
    if (std::isinf(value))
        return sign + QStringLiteral("inf");
    Digits digits;
    std::size_t places = expand(std::abs(value), digits);
    for (; places < precision; ++places)
        digits.insert(digits.begin(), 0);
    const std::size_t cut = places - precision;
    digits.resize(std::max(digits.size(), places + 1), 0);
    const bool up = roundsUp(digits, cut);
    digits.erase(digits.begin(), digits.begin() + static_cast<std::ptrdiff_t>(cut));
    for (std::size_t i = 0; up && ++digits[i] == 10; ++i) {
        digits[i] = 0;
        if (i + 1 == digits.size())
            digits.push_back(0);
    }
    QString text = sign;
    for (std::size_t i = digits.size(); i-- > 0;) {
        text += QChar(static_cast<char16_t>(u'0' + digits[i]));
        if (i == precision && precision > 0)
            text += u'.';
    }
    return text;
}

QString trimmed(QString text) {
    while (text.contains(u'.') && (text.endsWith(u'0') || text.endsWith(u'.')))
        text.chop(1);
    return text;
}

QString slowGwei(double value) {
    if (value >= 1)
        return slowly(value, value >= 100 ? 0 : 1);
    if (value == 0)
        return QStringLiteral("0");
    if (!(value < 0.001))
        return trimmed(slowly(value, 3));
    // Two digits that count, or as many decimals as a larger negative number leaves room for; C's six below none.
    const int precision = static_cast<int>(std::ceil(-std::log10(std::abs(value))) + 1);
    return trimmed(slowly(value, precision < 0 ? 6 : static_cast<std::size_t>(precision)));
}

QString slowUSD(double value) {
    if (value > 0 && value < 0.01)
        return QStringLiteral("<$0.01");
    return QLatin1Char('$') + (value > 0 ? slowly(value, value >= 100 ? 0 : 2) : QStringLiteral("0.00"));
}

void checkTexts(double value) {
    insist(Format::usd(value) == slowUSD(value));
    insist(Format::pct(value) ==
           (value >= 0 ? QStringLiteral("+") : QString()) + slowly(value == 0 ? 0.0 : value, 1) + QLatin1Char('%'));
    if (!std::isinf(value) || value > 0)
        insist(Format::gwei(value) == slowGwei(value));
}

/// Two prices have one text only where nine decimals say the same of both.
void checkRange(double low, double high) {
    if (low < 0 || high < 0 || std::isnan(low) || std::isnan(high))
        return;
    const auto [first, second] = Format::rangeLabels(low, high);
    const bool differs = low != high && trimmed(slowly(low, 9)) != trimmed(slowly(high, 9));
    insist(!differs || first != second);
    insist(low != high || first == second);
}

const std::array locales{QLocale::c(),
                         QLocale(QLocale::English, QLocale::UnitedStates),
                         QLocale(QLocale::German, QLocale::Switzerland),
                         QLocale(QLocale::Hindi, QLocale::India),
                         QLocale(QLocale::Arabic, QLocale::Egypt),
                         QLocale(QLocale::Chakma, QLocale::Bangladesh),
                         QLocale(QLocale::French, QLocale::France)};

/// A text of this locale, read back: its digits as ours, without what parts the groups.
QString ungrouped(const QString& text, const QLocale& locale) {
    const char32_t zero = locale.zeroDigit().toUcs4().value(0);
    QString plain = text;
    QString sign;
    if (plain.startsWith(locale.negativeSign())) {
        sign = QStringLiteral("-");
        plain = plain.sliced(locale.negativeSign().size());
    }
    QString read = sign;
    for (const char32_t each : plain.toUcs4()) {
        const QString character = QString::fromUcs4(&each, 1);
        if (each >= zero && each < zero + 10)
            read += QChar(static_cast<char16_t>(u'0' + (each - zero)));
        else if (character == locale.decimalPoint())
            read += u'.';
        else
            insist(character == locale.groupSeparator());
    }
    return read;
}

void checkGrouping(double value, const QLocale& locale) {
    const QString text = slowly(value, 2);
    insist(std::isfinite(value) ? ungrouped(grouped(text, locale), locale) == text : grouped(text, locale) == text);
}

double take(const std::uint8_t*& data) {
    double value = 0;
    std::memcpy(&value, data, sizeof value);
    data += sizeof value;
    return value;
}

} // namespace

/// Two numbers, bit by bit, a precision and a locale: every text is what the slow twin says.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 18)
        return 0;
    const double first = take(data);
    const double second = take(data);
    const unsigned precision = data[0] % 40;
    insist(fixedPoint(first, static_cast<int>(precision)) == slowly(first, precision));
    checkTexts(first);
    checkTexts(second);
    checkRange(first, second);
    checkGrouping(first, locales[data[1] % locales.size()]);
    return 0;
}

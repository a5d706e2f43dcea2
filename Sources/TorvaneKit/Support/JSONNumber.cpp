#include "Support/JSONNumber.h"

#include "Support/PowersOfTen.h"

#include <QtGlobal>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <system_error>

namespace torvane::JSON {

namespace {

/// The value of a number without exponent and with at most fifteen digits, as most figures are. Its digits are an exact
/// double and so is the power of ten: their quotient is rounded once, to the nearest (Clinger 1990).
std::optional<double> shortValue(std::string_view number) {
    const bool negative = number.starts_with('-');
    number.remove_prefix(negative);
    if (number.size() > 16)
        return std::nullopt;
    qint64 digits = 0;
    std::size_t places = 0;
    for (std::size_t i = 0; i < number.size(); ++i) {
        if (number[i] == '.')
            places = number.size() - 1 - i;
        else if (number[i] >= '0' && number[i] <= '9')
            digits = digits * 10 + (number[i] - '0');
        else
            return std::nullopt;
    }
    // Sixteen digits come here too if there is no point: then the conversion is the one rounding.
    const double value = static_cast<double>(digits) / exactPowersOfTen[places];
    return negative ? -value : value;
}

/// Whether a number is below 1, judged by the power of ten of its first digit that is not 0.
bool isSmall(std::string_view number) {
    const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view digits = number.substr(0, mark);
    const std::size_t first = digits.find_first_of("123456789");
    if (first == std::string_view::npos)
        return true;
    std::string_view power = number.substr(std::min(mark + 1, number.size()));
    power.remove_prefix(power.starts_with('+'));
    int exponent = 0;
    if (std::from_chars(power.data(), power.data() + power.size(), exponent).ec == std::errc::result_out_of_range)
        return power.starts_with('-'); // No document is long enough to make up for that.
    const std::size_t point = std::min(digits.find('.'), digits.size());
    return static_cast<qint64>(point) - static_cast<qint64>(first) + exponent <= 0;
}

} // namespace

double numberValue(std::string_view number) {
    if (const std::optional<double> exact = shortValue(number))
        return *exact;
    double value = 0;
    const std::errc error = std::from_chars(number.data(), number.data() + number.size(), value).ec;
    if (error == std::errc::result_out_of_range)
        value = isSmall(number) ? 0 : std::numeric_limits<double>::infinity();
    return error == std::errc{} || !number.starts_with('-') ? value : -value;
}

} // namespace torvane::JSON

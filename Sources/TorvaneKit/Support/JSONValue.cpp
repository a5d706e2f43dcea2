#include "Support/JSONDocument.h"
#include "Support/JSONErrors.h"

#include <charconv>
#include <concepts>
#include <system_error>

namespace torvane::JSON {

namespace {

QByteArray article(Kind kind) {
    switch (kind) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return "a boolean";
    case Kind::number:
        return "a number";
    case Kind::string:
        return "a string";
    case Kind::array:
        return "an array";
    case Kind::object:
        return "an object";
    }
    Q_UNREACHABLE();
}

/// Whether the number is nearer to 0 than to 1, judged by the power of ten of its first digit that is not zero.
bool isSmall(std::string_view number) {
    const std::size_t mark = number.find_first_of("eE");
    const std::string_view digits = number.substr(0, mark);
    long exponent = 0;
    if (mark != std::string_view::npos) {
        std::string_view power = number.substr(mark + 1);
        power.remove_prefix(power.starts_with('+'));
        if (std::from_chars(power.data(), power.data() + power.size(), exponent).ec != std::errc{})
            return power.starts_with('-');
    }
    const auto first = static_cast<long>(std::min(digits.find_first_of("123456789"), digits.size()));
    const auto point = static_cast<long>(std::min(digits.find('.'), digits.size()));
    return point - first + exponent <= 0;
}

template <std::integral T>
T readInteger(Value value) {
    require(value, Kind::number);
    const std::string_view text = value.text();
    T result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc{} || end != text.data() + text.size())
        throw DecodingError(DecodingError::Cause::corrupted, "not an integer of the wanted size");
    return result;
}

} // namespace

void require(Value value, Kind kind) {
    if (value.kind() == kind)
        return;
    const auto cause = value.kind() == Kind::null ? DecodingError::Cause::null : DecodingError::Cause::wrongType;
    throw DecodingError(cause, "expected " + article(kind) + ", found " + article(value.kind()));
}

bool readBool(Value value) {
    require(value, Kind::boolean);
    return value.text() == "true";
}

double readDouble(Value value) {
    require(value, Kind::number);
    const std::string_view text = value.text();
    double result = 0;
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), result).ec;
    if (error == std::errc{})
        return result;
    if (isSmall(text))
        return text.starts_with('-') ? -0.0 : 0.0;
    throw DecodingError(DecodingError::Cause::corrupted, "the number is too large");
}

qint64 readSigned(Value value) {
    return readInteger<qint64>(value);
}

quint64 readUnsigned(Value value) {
    return readInteger<quint64>(value);
}

QString readString(Value value) {
    require(value, Kind::string);
    const std::string_view text = value.text();
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace torvane::JSON

#pragma once

#include <QByteArray>

#include <charconv>
#include <optional>
#include <string>

/// Values that tell whether they are whole: the number of the value, and filling that follows from it in kind and
/// length.
namespace torvane::SelfCheckingValue {

inline QByteArray make(int number) {
    const auto letter = static_cast<char>('a' + number % 26);
    return QByteArray::fromStdString(std::to_string(number)) + ':' + QByteArray(number * 37 % 20'011, letter);
}

/// The number of a value, if it is whole.
inline std::optional<int> numberOf(const QByteArray& value) {
    int number = 0;
    const auto [end, error] = std::from_chars(value.begin(), value.end(), number);
    return error == std::errc() && value == make(number) ? std::optional(number) : std::nullopt;
}

} // namespace torvane::SelfCheckingValue

#pragma once

#include <QLatin1StringView>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>
#include <type_traits>
#include <utility>

namespace torvane {

/// The raw values of an enumeration: one pair per case, in the order of its cases. Specialise it beside the
/// enumeration:
///     template <> inline constexpr std::array rawValues<Colour>{std::pair{Colour::red, "red"_L1}, ...};
/// An enumeration without this table has no raw values and none of the functions below.
template <class E>
inline constexpr std::nullptr_t rawValues = nullptr;

template <class E>
concept RawEnum = std::is_enum_v<E> && !std::is_same_v<std::remove_cv_t<decltype(rawValues<E>)>, std::nullptr_t>;

/// The case's raw value: what is stored, and what users read.
template <RawEnum E>
constexpr QLatin1StringView rawValue(E value) {
    for (const auto& [each, raw] : rawValues<E>) {
        if (each == value)
            return raw;
    }
    Q_UNREACHABLE();
}

/// The case with exactly this raw value, case-sensitively.
template <RawEnum E>
constexpr std::optional<E> fromRawValue(QStringView text) {
    for (const auto& [value, raw] : rawValues<E>) {
        if (text == raw)
            return value;
    }
    return std::nullopt;
}

/// All cases, in order.
template <RawEnum E>
constexpr auto allCases() {
    std::array<E, rawValues<E>.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i)
        cases[i] = rawValues<E>[i].first;
    return cases;
}

} // namespace torvane

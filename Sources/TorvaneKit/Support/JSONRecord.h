#pragma once

#include <QList>
#include <QString>

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace torvane {

/// A member of a record and its name in the document. A record lists all of its members, in their order:
///     struct Point { double x; double y; static constexpr std::tuple keys{Key{"x", &Point::x}, Key{"y", &Point::y}};
///     };
/// A std::optional member may be missing or null in the document; every other one is required.
template <class Owner, class Member>
struct Key {
    std::string_view name;
    Member Owner::*member;

    constexpr Key(std::string_view keyName, Member Owner::*pointer)
        : name(keyName)
        , member(pointer) {}
};

} // namespace torvane

namespace torvane::JSON {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isList = false;
template <class T>
inline constexpr bool isList<QList<T>> = true;

template <class T>
concept Record = requires {
    T::keys;
};

/// A type that is one JSON string. fromText may throw DecodingError.
template <class T>
concept Text = requires(const T& value, const QString& text) {
    { T::fromText(text) } -> std::same_as<T>;
    { value.toText() } -> std::convertible_to<QString>;
};

/// A type that is written as an array of its elements, a std::tuple. It is never read.
template <class T>
concept Positional = requires(const T& value) {
    std::tuple_size<decltype(value.elements())>::value;
};

template <Record T>
inline constexpr std::size_t keyCount = std::tuple_size_v<std::remove_cvref_t<decltype(T::keys)>>;

template <class Owner, class... Members>
consteval bool listsAllMembers(const std::tuple<Key<Owner, Members>...>&) {
    // One value for each key builds the record, and one more is too many.
    constexpr bool enough = requires {
        Owner{std::declval<Members>()...};
    };
    constexpr bool tooFew = requires {
        Owner{std::declval<Members>()..., {}};
    };
    return enough && !tooFew;
}

/// Whether the record's table is complete. A class with constructors hides its members: there it is taken on trust.
template <Record T>
inline constexpr bool hasAllKeys = true;
template <Record T>
requires std::is_aggregate_v<T>
inline constexpr bool hasAllKeys<T> = listsAllMembers(T::keys);

/// The names of a record's keys, in the order of its table.
template <Record T>
inline constexpr auto keyNames =
    std::apply([](const auto&... key) { return std::array<std::string_view, sizeof...(key)>{key.name...}; }, T::keys);

} // namespace torvane::JSON

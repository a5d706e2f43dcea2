#pragma once

#include "Support/JSONDocument.h"
#include "Support/JSONErrors.h"
#include "Support/JSONRecord.h"

namespace torvane::JSON {

template <class T>
T read(Value value);

/// The values of the record's keys in an object, in the order of the table; the last one of duplicates.
template <Record T>
std::array<Value, keyCount<T>> find(Value object) {
    std::array<Value, keyCount<T>> found{};
    std::size_t expected = 0; // Documents mostly keep the order of the table.
    for (Value key = object.first(); key != object.past(); key = key.next().next()) {
        const std::string_view name = key.text();
        for (std::size_t tried = 0; tried < keyCount<T>; ++tried) {
            const std::size_t index = (expected + tried) % keyCount<T>;
            if (keyNames<T>[index] != name)
                continue;
            found[index] = key.next();
            expected = index + 1;
            break;
        }
    }
    return found;
}

template <class T>
void readMember(T& member, Value value, std::string_view name) {
    if (!value) {
        if constexpr (isOptional<T>)
            return;
    }
    try {
        if (!value)
            throw DecodingError(DecodingError::Cause::missing, "missing");
        member = read<T>(value);
    } catch (DecodingError& error) {
        error.prepend(name);
        throw;
    }
}

template <Record T>
T readRecord(Value object) {
    static_assert(hasAllKeys<T>, "a member of this record has no key");
    require(object, Kind::object);
    const auto found = find<T>(object);
    T record{};
    std::size_t index = 0;
    const auto readOne = [&](const auto& key) { readMember(record.*key.member, found[index++], key.name); };
    std::apply([&](const auto&... key) { (readOne(key), ...); }, T::keys);
    return record;
}

template <class List>
List readList(Value array) {
    require(array, Kind::array);
    qsizetype count = 0;
    for (Value element = array.first(); element != array.past(); element = element.next())
        ++count;
    List list(count);
    auto next = list.begin(); // Appending would ask for each element whether there is room.
    try {
        for (Value element = array.first(); element != array.past(); element = element.next()) {
            *next = read<typename List::value_type>(element);
            ++next;
        }
    } catch (DecodingError& error) {
        error.prepend(next - list.begin());
        throw;
    }
    return list;
}

/// The value as this type; throws DecodingError.
template <class T>
T read(Value value) {
    if constexpr (isOptional<T>)
        return value.kind() == Kind::null ? T{} : T{read<typename T::value_type>(value)};
    else if constexpr (isList<T>)
        return readList<T>(value);
    else if constexpr (Record<T>)
        return readRecord<T>(value);
    else if constexpr (Text<T>)
        return T::fromText(readString(value));
    else if constexpr (std::same_as<T, QString>)
        return readString(value);
    else if constexpr (std::same_as<T, bool>)
        return readBool(value);
    else if constexpr (std::same_as<T, qint64>)
        return readSigned(value);
    else if constexpr (std::same_as<T, quint64>)
        return readUnsigned(value);
    else {
        static_assert(std::same_as<T, double>, "no JSON decoding for this type");
        return readDouble(value);
    }
}

} // namespace torvane::JSON

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

/// Numbers: many, and appending would ask for each whether there is room.
template <class List>
void readPlainElements(Value array, List& list, qsizetype& index) {
    qsizetype count = 0;
    for (Value element = array.first(); element != array.past(); element = element.next())
        ++count;
    list.resize(count);
    auto next = list.begin();
    for (Value element = array.first(); element != array.past(); element = element.next(), ++index)
        *next++ = read<typename List::value_type>(element);
}

/// Whatever is larger than its text is only made once it has been read: a document of commas would fill the memory.
template <class List>
void readElements(Value array, List& list, qsizetype& index) {
    for (Value element = array.first(); element != array.past(); element = element.next(), ++index)
        list.push_back(read<typename List::value_type>(element));
}

template <class List>
List readList(Value array) {
    require(array, Kind::array);
    List list;
    qsizetype index = 0;
    try {
        if constexpr (std::is_trivially_copyable_v<typename List::value_type>)
            readPlainElements(array, list, index);
        else
            readElements(array, list, index);
    } catch (DecodingError& error) {
        error.prepend(index);
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

#pragma once

#include "Support/JSONErrors.h"
#include "Support/JSONRecord.h"

#include <QByteArray>
#include <QString>

namespace torvane::JSON {

void writeBool(QByteArray& out, bool value);
void writeDouble(QByteArray& out, double value); ///< the shortest text that reads back the same; throws EncodingError
void writeSigned(QByteArray& out, qint64 value);
void writeUnsigned(QByteArray& out, quint64 value);
void writeString(QByteArray& out, const QString& value); ///< throws EncodingError
void writeUtf8(QByteArray& out, std::string_view value); ///< quoted and escaped

template <class T>
void write(QByteArray& out, const T& value);

/// Puts a comma before every element but the first.
inline void separate(QByteArray& out, bool& first) {
    if (!std::exchange(first, false))
        out.append(',');
}

template <Record T>
void writeRecord(QByteArray& out, const T& record) {
    static_assert(hasAllKeys<T>, "a member of this record has no key");
    bool first = true;
    const auto writeMember = [&](const auto& key) {
        const auto& value = record.*key.member;
        if constexpr (isOptional<std::remove_cvref_t<decltype(value)>>) {
            if (!value)
                return;
        }
        separate(out, first);
        writeUtf8(out, key.name);
        out.append(':');
        write(out, value);
    };
    out.append('{');
    std::apply([&](const auto&... key) { (writeMember(key), ...); }, T::keys);
    out.append('}');
}

template <class Elements>
void writeArray(QByteArray& out, const Elements& elements) {
    bool first = true;
    const auto writeElement = [&](const auto& element) {
        separate(out, first);
        write(out, element);
    };
    out.append('[');
    if constexpr (isList<Elements>) {
        for (const auto& element : elements)
            writeElement(element);
    } else {
        std::apply([&](const auto&... element) { (writeElement(element), ...); }, elements);
    }
    out.append(']');
}

/// Appends the value; throws EncodingError.
template <class T>
void write(QByteArray& out, const T& value) {
    if constexpr (isOptional<T>) {
        if (value)
            write(out, *value);
        else
            out.append("null");
    } else if constexpr (isList<T>)
        writeArray(out, value);
    else if constexpr (Positional<T>)
        writeArray(out, value.elements());
    else if constexpr (Record<T>)
        writeRecord(out, value);
    else if constexpr (Text<T>)
        writeString(out, value.toText());
    else if constexpr (std::same_as<T, QString>)
        writeString(out, value);
    else if constexpr (std::same_as<T, bool>)
        writeBool(out, value);
    else if constexpr (std::same_as<T, qint64>)
        writeSigned(out, value);
    else if constexpr (std::same_as<T, quint64>)
        writeUnsigned(out, value);
    else {
        static_assert(std::same_as<T, double>, "no JSON encoding for this type");
        writeDouble(out, value);
    }
}

} // namespace torvane::JSON

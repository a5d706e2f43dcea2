#include "Support/JSONDocument.h"
#include "Support/JSONErrors.h"
#include "Support/JSONNumber.h"

#include <QStringDecoder>

#include <charconv>
#include <cmath>
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

void failKind(Value value, Kind wanted) {
    const auto cause = value.kind() == Kind::null ? DecodingError::Cause::null : DecodingError::Cause::wrongType;
    throw DecodingError(cause, "expected " + article(wanted) + ", found " + article(value.kind()));
}

bool readBool(Value value) {
    require(value, Kind::boolean);
    return value.text() == "true";
}

double readDouble(Value value) {
    require(value, Kind::number);
    const double result = numberValue(value.text());
    if (std::isinf(result))
        throw DecodingError(DecodingError::Cause::corrupted, "the number is too large");
    return result;
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
    const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
    if (!bytes.startsWith("\xef\xbb\xbf"))
        return QString::fromUtf8(bytes);
    // fromUtf8 drops a byte order mark; inside a text it is a character like any other.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
    return decoder(bytes);
}

} // namespace torvane::JSON

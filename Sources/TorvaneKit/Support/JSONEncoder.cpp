#include "Support/JSONEncoder.h"

#include <QStringEncoder>

#include <charconv>
#include <cmath>

namespace torvane::JSON {

namespace {

template <class T>
void writeNumber(QByteArray& out, T value) {
    std::array<char, 32> text; // the shortest form of a double takes at most 24
    const std::to_chars_result result = std::to_chars(text.data(), text.data() + text.size(), value);
    out.append(text.data(), result.ptr - text.data());
}

/// The letter that follows the backslash, or 0 for a character that has no short escape.
char shortEscape(char character) {
    switch (character) {
    case '"':
    case '\\':
        return character;
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

} // namespace

void writeBool(QByteArray& out, bool value) {
    out.append(value ? "true" : "false");
}

void writeDouble(QByteArray& out, double value) {
    if (!std::isfinite(value))
        throw EncodingError("JSON has no number that is not finite");
    writeNumber(out, value);
}

void writeSigned(QByteArray& out, qint64 value) {
    writeNumber(out, value);
}

void writeUnsigned(QByteArray& out, quint64 value) {
    writeNumber(out, value);
}

void writeString(QByteArray& out, const QString& value) {
    QStringEncoder encoder(QStringEncoder::Utf8, QStringConverter::Flag::Stateless);
    const QByteArray text = encoder(value);
    if (encoder.hasError())
        throw EncodingError("the text holds half of a surrogate pair");
    writeUtf8(out, {text.constData(), static_cast<std::size_t>(text.size())});
}

void writeUtf8(QByteArray& out, std::string_view value) {
    out.append('"');
    for (const char character : value) {
        const auto code = static_cast<unsigned char>(character);
        if (const char letter = shortEscape(character))
            out.append('\\').append(letter);
        else if (code < 0x20)
            out.append("\\u00").append(code < 0x10 ? '0' : '1').append("0123456789abcdef"[code % 16]);
        else
            out.append(character);
    }
    out.append('"');
}

} // namespace torvane::JSON

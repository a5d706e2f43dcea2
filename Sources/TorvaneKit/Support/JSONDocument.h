#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

#include <string_view>
#include <vector>

namespace torvane::JSON {

enum class Kind : quint8 { null, boolean, number, string, array, object };

/// One step of a document, in the order of its bytes. An object's children are its keys and values in turn.
struct Token {
    static constexpr quint32 extentLimit = (1U << 29) - 1;

    quint32 offset;        ///< of the first byte; of a string the first after the quotation mark
    quint32 kindAndExtent; ///< by hand: a bit field is stored by the byte, and read back only after a stall

    static Token of(Kind kind, std::size_t offset, std::size_t extent) {
        return {static_cast<quint32>(offset), static_cast<quint32>(kind) << 29 | static_cast<quint32>(extent)};
    }

    Kind kind() const { return static_cast<Kind>(kindAndExtent >> 29); }

    /// Of a text its length in bytes; of an array or object the number of tokens inside.
    quint32 extent() const { return kindAndExtent & extentLimit; }
};

/// A place in a Document, valid as long as that lives.
class Value final {
public:
    Value() = default; ///< no value at all
    Value(const Token* token, const char* bytes)
        : m_token(token)
        , m_bytes(bytes) {}

    explicit operator bool() const { return m_token; }
    bool operator==(const Value&) const = default;

    Kind kind() const { return m_token->kind(); }
    qsizetype offset() const { return m_token->offset; }

    /// As written, of a string unescaped. Arrays and objects have none.
    std::string_view text() const { return {m_bytes + m_token->offset, m_token->extent()}; }

    /// The children of an array or object run from first() to before past(), by next().
    Value first() const { return {m_token + 1, m_bytes}; }
    Value past() const { return {m_token + 1 + m_token->extent(), m_bytes}; }
    Value next() const { return kind() >= Kind::array ? past() : first(); }

private:
    const Token* m_token = nullptr;
    const char* m_bytes = nullptr;
};

/// A document that is known to be JSON in the strict sense of RFC 8259, as a flat list of tokens over a copy of its
/// bytes. Flat, so that no depth of nesting costs stack and a value of no interest is stepped over.
class Document final {
public:
    explicit Document(QByteArrayView bytes); ///< throws DecodingError

    Value root() const { return {m_tokens.data(), m_bytes.constData()}; }

private:
    QByteArray m_bytes; ///< strings are unescaped in place
    std::vector<Token> m_tokens;
};

[[noreturn]] void failKind(Value value, Kind wanted);

/// Throws DecodingError unless the value is of this kind.
inline void require(Value value, Kind kind) {
    if (value.kind() != kind)
        failKind(value, kind);
}

bool readBool(Value value);
double readDouble(Value value); ///< the nearest double; throws on overflow, while underflow counts as 0
qint64 readSigned(Value value);
quint64 readUnsigned(Value value);
QString readString(Value value);

} // namespace torvane::JSON

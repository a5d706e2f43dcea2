#include "Support/JSONDocument.h"

#include "Support/JSONErrors.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <cstring>
#include <string>

using torvane::JSON::Kind;
using torvane::JSON::Token;

namespace {

constexpr unsigned flags = rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag |
                           rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag;

/// Lone surrogates that were escapes: encoded, they are no UTF-8, and the reader lets the low ones pass.
bool holdsSurrogate(const char* text, std::size_t length) {
    const char* const end = text + length;
    while ((text = static_cast<const char*>(std::memchr(text, 0xED, static_cast<std::size_t>(end - text))))) {
        if (static_cast<unsigned char>(text[1]) >= 0xA0)
            return true;
        ++text;
    }
    return false;
}

/// Notes each event of the reader as one token. While an array or object is open, its extent holds the index of the one
/// around it; so the stack of the open ones needs no memory of its own.
class Tape final {
public:
    Tape(std::vector<Token>& tokens, rapidjson::InsituStringStream& stream)
        : m_tokens(tokens)
        , m_stream(stream) {}

    bool Null() { return add(Kind::null, m_stream.Tell() - 4, 4); }
    bool Bool(bool value) { return add(Kind::boolean, m_stream.Tell() - (value ? 4 : 5), value ? 4 : 5); }
    bool RawNumber(const char* text, unsigned length, bool) { return add(Kind::number, offset(text), length); }
    bool Key(const char* text, unsigned length, bool copy) { return String(text, length, copy); }
    bool StartArray() { return open(Kind::array); }
    bool StartObject() { return open(Kind::object); }
    bool EndArray(unsigned) { return close(); }
    bool EndObject(unsigned) { return close(); }

    bool String(const char* text, unsigned length, bool) {
        return !holdsSurrogate(text, length) && add(Kind::string, offset(text), length);
    }

    // The reader's interface has these; with its numbers given as text it never calls them.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(qint64) { return false; }
    bool Uint64(quint64) { return false; }
    bool Double(double) { return false; }

private:
    std::size_t offset(const char* text) const { return static_cast<std::size_t>(text - m_stream.head_); }

    bool add(Kind kind, std::size_t offset, unsigned extent) {
        m_tokens.push_back(
            {static_cast<quint32>(offset), static_cast<quint32>(kind) & 7U, extent & Token::extentLimit});
        return true;
    }

    bool open(Kind kind) {
        const quint32 around = m_open;
        m_open = static_cast<quint32>(m_tokens.size());
        return add(kind, m_stream.Tell(), around);
    }

    bool close() {
        Token& container = m_tokens[m_open];
        const quint32 inside = static_cast<quint32>(m_tokens.size()) - m_open - 1;
        m_open = container.extent;
        container.extent = inside & Token::extentLimit;
        return true;
    }

    std::vector<Token>& m_tokens;
    rapidjson::InsituStringStream& m_stream;
    quint32 m_open = 0;
};

char* afterDigits(char* text) {
    while (*text >= '0' && *text <= '9')
        ++text;
    return text;
}

/// The end of the number that starts here, or none if what stands here is no number.
char* endOfNumber(char* text) {
    text += *text == '-';
    char* end = *text == '0' ? text + 1 : afterDigits(text);
    if (end == text)
        return nullptr;
    if (*end == '.') {
        char* const fraction = end + 1;
        end = afterDigits(fraction);
        if (end == fraction)
            return nullptr;
    }
    if (*end == 'e' || *end == 'E') {
        char* const exponent = end + 1 + (end[1] == '+' || end[1] == '-');
        end = afterDigits(exponent);
        if (end == exponent)
            return nullptr;
    }
    return end;
}

} // namespace

namespace rapidjson {

// The reader's own scan refuses numbers that JSON allows (0e400, the largest double as an integer, 1e400 in a member
// that nobody asked for) and computes a value on the way that nobody uses. Ours finds the end of the text and no more.
template <>
template <>
inline void Reader::ParseNumber<flags>(InsituStringStream& stream, Tape& tape) {
    char* const end = endOfNumber(stream.src_);
    if (!end)
        return SetParseError(kParseErrorValueInvalid, stream.Tell());
    tape.RawNumber(stream.src_, static_cast<unsigned>(end - stream.src_), false);
    stream.src_ = end;
}

} // namespace rapidjson

namespace torvane::JSON {

namespace {

[[noreturn]] void refuse(const char* reason, std::size_t offset) {
    throw DecodingError(DecodingError::Cause::notJSON,
                        "not JSON at byte " + QByteArray::fromStdString(std::to_string(offset)) + ": " + reason);
}

} // namespace

Document::Document(QByteArrayView bytes)
    : m_bytes(bytes.toByteArray()) {
    if (bytes.size() > Token::extentLimit)
        refuse("the document is too long", Token::extentLimit);
    m_tokens.reserve(static_cast<std::size_t>(bytes.size()) / 8 + 1);
    rapidjson::InsituStringStream stream(m_bytes.data());
    Tape tape(m_tokens, stream);
    rapidjson::Reader reader;
    reader.Parse<flags>(stream, tape);
    if (reader.HasParseError())
        refuse(rapidjson::GetParseError_En(reader.GetParseErrorCode()), reader.GetErrorOffset());
    if (stream.Tell() != static_cast<std::size_t>(bytes.size()))
        refuse("a zero byte", stream.Tell()); // It ends the reader's text, not ours.
}

} // namespace torvane::JSON

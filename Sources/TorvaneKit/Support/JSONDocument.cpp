#include "Support/JSONDocument.h"

#include "Support/JSONErrors.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace torvane::JSON {

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
    bool RawNumber(const char* text, std::size_t length, bool) { return add(Kind::number, offset(text), length); }
    bool Key(const char* text, unsigned length, bool copy) { return String(text, length, copy); }
    bool StartArray() { return open(Kind::array); }
    bool StartObject() { return open(Kind::object); }
    bool EndArray(unsigned) { return close(); }
    bool EndObject(unsigned) { return close(); }

    bool String(const char* text, unsigned length, bool) {
        return !holdsSurrogate(text, length) && add(Kind::string, offset(text), length);
    }

    bool isInArray() const { return !m_tokens.empty() && m_tokens[m_open].kind() == Kind::array; }

    // The reader's interface has these; with numbers given as text it never calls them.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(qint64) { return false; }
    bool Uint64(quint64) { return false; }
    bool Double(double) { return false; }

private:
    std::size_t offset(const char* text) const { return static_cast<std::size_t>(text - m_stream.head_); }

    bool add(Kind kind, std::size_t offset, std::size_t extent) {
        m_tokens.push_back(Token::of(kind, offset, extent));
        return true;
    }

    bool open(Kind kind) {
        const quint32 around = m_open;
        m_open = static_cast<quint32>(m_tokens.size());
        return add(kind, m_stream.Tell(), around);
    }

    bool close() {
        Token& container = m_tokens[m_open];
        const std::size_t inside = m_tokens.size() - m_open - 1;
        m_open = container.extent();
        container = Token::of(container.kind(), container.offset, inside);
        return true;
    }

    std::vector<Token>& m_tokens;
    rapidjson::InsituStringStream& m_stream;
    quint32 m_open = 0;
};

/// Whether the next eight bytes are digits, all at once: only digits become 0 to 9 and stay below 128 with 118 added.
bool areEightDigits(const char* text) {
    quint64 word = 0;
    std::memcpy(&word, text, 8);
    word ^= 0x3030303030303030;
    return ((word | (word + 0x7676767676767676)) & 0x8080808080808080) == 0;
}

char* afterDigits(char* text) {
    while (areEightDigits(text))
        text += 8;
    while (*text >= '0' && *text <= '9')
        ++text;
    return text;
}

char* afterBlanks(char* text) {
    if (*text > ' ')
        return text; // As almost everywhere in a compact document.
    // A line end and its indentation, eight at a time; there is room behind the document.
    text += *text == '\n';
    while (std::memcmp(text, "        ", 8) == 0)
        text += 8;
    while (*text == ' ' || *text == '\n' || *text == '\r' || *text == '\t')
        ++text;
    return text;
}

/// The end of the number that starts here, or null if what stands here is no number.
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

} // namespace torvane::JSON

namespace rapidjson {

// The reader's own scan refuses numbers that JSON allows (0e400, the largest double as an integer, 1e400 in a member
// that nobody asked for) and computes a value that nobody asked for either. Ours finds the end of the text and no more.
// In an array it takes all the numbers up to the next other value at once: most of our documents are such lists.
template <>
template <>
inline void Reader::ParseNumber<torvane::JSON::flags>(InsituStringStream& stream, torvane::JSON::Tape& tape) {
    using namespace torvane::JSON;
    char* begin = stream.src_;
    char* end = endOfNumber(begin);
    if (!end)
        return SetParseError(kParseErrorValueInvalid, stream.Tell());
    while (end) {
        tape.RawNumber(begin, static_cast<std::size_t>(end - begin), false);
        stream.src_ = end;
        char* const comma = afterBlanks(end);
        if (*comma != ',' || !tape.isInArray())
            return;
        begin = afterBlanks(comma + 1);
        end = endOfNumber(begin);
    }
}

} // namespace rapidjson

namespace torvane::JSON {

namespace {

[[noreturn]] void refuse(const char* reason, std::size_t offset) {
    throw DecodingError(DecodingError::Cause::notJSON,
                        "not JSON at byte " + QByteArray::fromStdString(std::to_string(offset)) + ": " + reason);
}

/// The document with zero bytes after it: the end of the text for the reader, and room for looking at whole words.
QByteArray padded(QByteArrayView bytes) {
    constexpr qsizetype padding = 16;
    if (bytes.size() > Token::extentLimit)
        refuse("the document is too long", Token::extentLimit);
    QByteArray copy(bytes.size() + padding, Qt::Uninitialized);
    std::copy(bytes.begin(), bytes.end(), copy.begin());
    std::fill_n(copy.end() - padding, padding, '\0');
    return copy;
}

} // namespace

Document::Document(QByteArrayView bytes)
    : m_bytes(padded(bytes)) {
    m_tokens.reserve(static_cast<std::size_t>(bytes.size()) / 8 + 1);
    rapidjson::InsituStringStream stream(m_bytes.data());
    Tape tape(m_tokens, stream);
    rapidjson::Reader reader;
    reader.Parse<flags>(stream, tape);
    if (reader.GetParseErrorCode() == rapidjson::kParseErrorTermination)
        refuse("half of a surrogate pair", reader.GetErrorOffset()); // The one thing that the tape turns down.
    if (reader.HasParseError())
        refuse(rapidjson::GetParseError_En(reader.GetParseErrorCode()), reader.GetErrorOffset());
    if (stream.Tell() != static_cast<std::size_t>(bytes.size()))
        refuse("a zero byte", stream.Tell()); // It ends the reader's text, not ours.
}

} // namespace torvane::JSON

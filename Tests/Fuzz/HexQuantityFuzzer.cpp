#include "Chain/JSONRPC.h"

#include <cstdint>
#include <cstdlib>
#include <optional>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

std::optional<unsigned> digit(QChar character) {
    const auto code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'f')
        return code - 'a' + 10;
    if (code >= 'A' && code <= 'F')
        return code - 'A' + 10;
    return std::nullopt;
}

/// The slow twin: one digit after the other.
std::optional<quint64> slowly(const QString& text) {
    if (text.size() < 3 || text[0] != u'0' || text[1] != u'x')
        return std::nullopt;
    quint64 value = 0;
    for (const QChar character : text.sliced(2)) {
        const std::optional<unsigned> next = digit(character);
        if (!next || value >> 60 != 0)
            return std::nullopt;
        value = value * 16 + *next;
    }
    return value;
}

std::optional<quint64> read(const QString& text) {
    try {
        return HexQuantity::fromText(text).value;
    } catch (const DecodingError& error) {
        insist(error.description() == "Invalid hexadecimal quantity");
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    for (const QString& each : {text, QStringLiteral("0x") + text}) {
        const std::optional<quint64> value = read(each);
        insist(value == slowly(each));
        if (value)
            insist(read(HexQuantity{*value}.toText()) == value);
    }
    return 0;
}

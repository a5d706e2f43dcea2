#include "Chain/JSONRPC.h"

#include <array>
#include <charconv>

namespace torvane {

HexQuantity HexQuantity::fromText(const QString& text) {
    const QByteArray digits = text.toLatin1(); // What is not Latin-1 becomes "?", which is no digit either.
    HexQuantity quantity;
    if (digits.startsWith("0x")) {
        // from_chars takes no sign, blank or second prefix for an unsigned number.
        const auto [end, error] = std::from_chars(digits.cbegin() + 2, digits.cend(), quantity.value, 16);
        if (error == std::errc() && end == digits.cend())
            return quantity;
    }
    throw DecodingError(DecodingError::Cause::corrupted, "Invalid hexadecimal quantity");
}

QString HexQuantity::toText() const {
    std::array<char, 16> digits;
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16);
    Q_ASSERT(error == std::errc());
    return QStringLiteral("0x") + QLatin1StringView(digits.data(), end);
}

} // namespace torvane

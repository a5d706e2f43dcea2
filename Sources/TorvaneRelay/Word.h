#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace torvane {

/// A word of 32 bytes, big-endian: what contracts take and give (Solidity's contract ABI specification).
class Word final {
public:
    static constexpr qsizetype size = 32;

    Word() = default;
    explicit Word(quint64 number);
    Word(quint64 high, quint64 low);     ///< 128 bits
    explicit Word(QByteArrayView bytes); ///< exactly 32 of them

    /// The last 64 bits, and the 64 before them.
    quint64 low() const;
    quint64 high() const;

    /// As an unsigned number; none where it does not fit.
    std::optional<quint64> toUnsigned() const;

    /// As a signed number in two's complement; none where it does not fit.
    std::optional<qint64> toSigned() const;

    /// Whether it is below zero in two's complement.
    bool isNegative() const { return (m_bytes.front() & 0x80) != 0; }

    /// As an unsigned number divided by a power of ten: a token's amount, a price. Nearest to a few units in the last
    /// place.
    double scaled(int decimals) const;

    QByteArrayView bytes() const { return {m_bytes.data(), size}; }

    bool operator==(const Word&) const = default;

private:
    std::array<char, size> m_bytes{};
};

/// What a contract's function returns, or what it is called with. In JSON, hexadecimal digits after "0x".
class Words final {
public:
    Words() = default;
    explicit Words(const QList<Word>& words)
        : m_words(words) {}

    /// Throws DecodingError for what is no whole number of words. None at all is what an address without a contract
    /// answers.
    static Words fromText(const QString& text);
    QString toText() const;

    /// Throws DecodingError where the answer is shorter.
    const Word& at(qsizetype index) const;

    qsizetype count() const { return m_words.size(); }

private:
    QList<Word> m_words;
};

/// The bytes that "0x" and hexadecimal digits, two for each byte, stand for; none for anything else.
std::optional<QByteArray> bytesFromHex(QStringView text);

} // namespace torvane

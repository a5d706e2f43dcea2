#include "Word.h"

#include "Support/JSONErrors.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr qsizetype limbSize = sizeof(quint64);
constexpr qsizetype lastLimb = Word::size - limbSize;

bool isHexDigit(QChar character) {
    const char16_t c = character.unicode();
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool consistsOf(QByteArrayView bytes, char byte) {
    return std::all_of(bytes.cbegin(), bytes.cend(), [byte](char each) { return each == byte; });
}

} // namespace

Word::Word(quint64 number) {
    qToBigEndian(number, m_bytes.data() + lastLimb);
}

Word::Word(quint64 high, quint64 low)
    : Word(low) {
    qToBigEndian(high, m_bytes.data() + lastLimb - limbSize);
}

Word::Word(QByteArrayView bytes) {
    Q_ASSERT(bytes.size() == size);
    std::copy(bytes.cbegin(), bytes.cend(), m_bytes.begin());
}

quint64 Word::low() const {
    return qFromBigEndian<quint64>(m_bytes.data() + lastLimb);
}

quint64 Word::high() const {
    return qFromBigEndian<quint64>(m_bytes.data() + lastLimb - limbSize);
}

std::optional<quint64> Word::toUnsigned() const {
    if (!consistsOf(bytes().first(lastLimb), '\0'))
        return std::nullopt;
    return low();
}

std::optional<qint64> Word::toSigned() const {
    const auto number = static_cast<qint64>(low());
    if (!consistsOf(bytes().first(lastLimb), number < 0 ? '\xff' : '\0'))
        return std::nullopt;
    return number;
}

double Word::scaled(int decimals) const {
    long double value = 0; // 64 bits of mantissa: the four roundings stay below a double's.
    for (qsizetype limb = 0; limb < size; limb += limbSize)
        value = value * 0x1p64L + static_cast<long double>(qFromBigEndian<quint64>(m_bytes.data() + limb));
    return static_cast<double>(value / std::pow(10.0L, decimals));
}

Words Words::fromText(const QString& text) {
    const std::optional<QByteArray> bytes = bytesFromHex(text);
    if (!bytes)
        throw DecodingError(DecodingError::Cause::corrupted, "not hexadecimal data");
    if (bytes->size() % Word::size != 0)
        throw DecodingError(DecodingError::Cause::corrupted, "not a whole number of words");
    QList<Word> words;
    for (qsizetype offset = 0; offset < bytes->size(); offset += Word::size)
        words.append(Word(QByteArrayView(*bytes).sliced(offset, Word::size)));
    return Words(words);
}

QString Words::toText() const {
    QByteArray bytes;
    for (const Word& word : m_words)
        bytes.append(word.bytes());
    return QStringLiteral("0x") + QString::fromLatin1(bytes.toHex());
}

const Word& Words::at(qsizetype index) const {
    if (index >= m_words.size())
        throw DecodingError(DecodingError::Cause::corrupted, "fewer words than the function returns");
    return m_words[index];
}

std::optional<QByteArray> bytesFromHex(QStringView text) {
    if (!text.startsWith(u"0x") || text.size() % 2 != 0)
        return std::nullopt;
    const QStringView digits = text.sliced(2);
    if (!std::all_of(digits.cbegin(), digits.cend(), isHexDigit)) // fromHex would skip what is none.
        return std::nullopt;
    return QByteArray::fromHex(digits.toLatin1());
}

} // namespace torvane

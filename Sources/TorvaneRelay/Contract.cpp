#include "Contract.h"

#include <QCryptographicHash>
#include <QRegularExpression>

namespace torvane {

namespace {

constexpr qsizetype selectorSize = 4;
constexpr qsizetype addressDigits = 40;

/// The hash of Ethereum: Keccak-256 as it was before NIST changed its padding to make SHA-3.
QByteArray keccak256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Keccak_256);
}

QString selector(QStringView signature) {
    return QStringLiteral("0x") + QString::fromLatin1(keccak256(signature.toLatin1()).first(selectorSize).toHex());
}

} // namespace

ContractCall contractCall(const QString& address, QStringView signature, const QList<Word>& arguments) {
    return {address, selector(signature) + Words(arguments).toText().sliced(2)};
}

ContractCall contractCallWithBytes(const QString& address, QStringView signature, const QByteArray& bytes) {
    // A dynamic argument: where it begins, its length, itself, filled up to whole words.
    QList<Word> arguments{Word(quint64{Word::size}), Word(static_cast<quint64>(bytes.size()))};
    const qsizetype filled = (bytes.size() + Word::size - 1) / Word::size * Word::size;
    const QByteArray padded = bytes.leftJustified(filled, '\0');
    for (qsizetype offset = 0; offset < filled; offset += Word::size)
        arguments.append(Word(QByteArrayView(padded).sliced(offset, Word::size)));
    return contractCall(address, signature, arguments);
}

bool isChecksummedAddress(QStringView text) {
    const std::optional<QByteArray> bytes = bytesFromHex(text);
    if (!bytes || text.size() != 2 + addressDigits)
        return false;
    const QByteArray digits = bytes->toHex();
    const QByteArray hash = keccak256(digits).toHex();
    for (qsizetype i = 0; i < addressDigits; ++i) {
        const bool isCapital = hash[i] >= '8'; // '8' to 'f': the hash's digit has its highest bit set.
        const QChar expected = QLatin1Char(digits[i]);
        if (text[i + 2] != (isCapital ? expected.toUpper() : expected))
            return false;
    }
    return true;
}

bool isSignature(QStringView text) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z_$][A-Za-z0-9_$]*\\([a-z0-9,\\[\\]()]*\\)")));
    return form.match(text).hasMatch();
}

} // namespace torvane

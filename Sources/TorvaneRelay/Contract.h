#pragma once

#include "Support/JSONRecord.h"
#include "Word.h"

#include <QString>
#include <QStringView>

namespace torvane {

/// A call of a contract's function: the first parameter of eth_call.
struct ContractCall {
    QString to;
    QString data;
    static constexpr std::tuple keys{Key{"to", &ContractCall::to}, Key{"data", &ContractCall::data}};
};

/// Calls a function by its signature, such as "getRoundData(uint80)": the first four bytes of the signature's
/// Keccak-256, then the arguments (Solidity's contract ABI specification).
ContractCall contractCall(const QString& address, QStringView signature, const QList<Word>& arguments = {});

/// A call whose one argument is a byte string of any length.
ContractCall contractCallWithBytes(const QString& address, QStringView signature, const QByteArray& bytes);

/// Whether it is an address with the checksum that its capital letters form (EIP-55): a digit that was mistyped fails.
bool isChecksummedAddress(QStringView text);

/// Whether it is a function's signature without blanks: a name, and types in parentheses.
bool isSignature(QStringView text);

} // namespace torvane

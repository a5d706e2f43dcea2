#pragma once

#include "Support/JSONDecoder.h"
#include "Support/JSONEncoder.h"
#include "Support/JSONErrors.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <utility>

/// JSON of RFC 8259, strictly, to and from records that declare their keys (see Key).
///
/// Types: double, bool, qint64, quint64, QString, QList of a type, std::optional of a type (absent when missing or
/// null, left out when absent), records, and a type that is one JSON string by its own rules (see JSON::Text). Members
/// that the table does not name are ignored at any depth; of duplicates the last one counts, and the others as if never
/// written.
namespace torvane::JSON {

/// The document as a T, complete or not at all: throws DecodingError for the first bad key in the order of the table.
template <class T>
T decode(QByteArrayView bytes) {
    const Document document(bytes);
    return read<T>(document.root());
}

/// The compact document of a value, keys in the order of the table. Throws EncodingError where JSON has no such value.
template <class T>
QByteArray encode(const T& value) {
    QByteArray out;
    write(out, value);
    return out;
}

using Members = QList<std::pair<QString, QByteArray>>;

/// The members of the object that the document is, in order, each with the text of its value exactly as written. Of
/// duplicates the last value, at the place of the first. Throws DecodingError when it is no object.
Members members(QByteArrayView object);

/// The object of these members, one on each line, every value's text taken over as it is.
QByteArray object(const Members& members);

} // namespace torvane::JSON

#pragma once

#include "Model/Snapshot.h"
#include "Support/FileDescriptor.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <exception>
#include <optional>

namespace torvane {

/// A document that is not published; says why.
class PublicationFailure final : public std::exception {
public:
    explicit PublicationFailure(const QString& what)
        : m_what(what.toUtf8()) {}

    const char* what() const noexcept override { return m_what.constData(); }

private:
    QByteArray m_what;
};

/// Keeps other runs away from a document for as long as it lives, by a lock on a hidden file beside it.
class RunLock final {
public:
    /// Throws PublicationFailure where another run has it, or where there is no directory to put it in.
    explicit RunLock(const QString& document);

private:
    FileDescriptor m_file;
};

/// The document of an earlier run, the relay's only memory.
struct EarlierDocument {
    std::optional<Snapshot> snapshot;
    QDateTime generatedAt; ///< of that snapshot
    QString trouble;       ///< why a file that is there is of no use
};

EarlierDocument readEarlierDocument(const QString& path);

/// Throws PublicationFailure where a document of this time would not be later than the earlier one.
void requireLater(const QDateTime& generatedAt, const EarlierDocument& earlier);

/// The document's bytes, having been read again by what reads them in the end. Throws PublicationFailure.
QByteArray encodedDocument(const Snapshot& snapshot);

/// Decodes a document and its time strictly: throws DecodingError, which names the key that is wrong.
Snapshot decodedDocument(QByteArrayView bytes);

} // namespace torvane

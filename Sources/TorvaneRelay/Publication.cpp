#include "Publication.h"

#include "Chain/NetworkClient.h"
#include "Support/ISO8601.h"
#include "Support/JSON.h"
#include "Support/SafeFile.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace torvane {

namespace {

QString lockPath(const QString& document) {
    const QFileInfo file(document);
    return file.path() + QStringLiteral("/.") + file.fileName() + QStringLiteral(".lock");
}

QString reasonFor(SafeFile::State state) {
    switch (state) {
    case SafeFile::State::forbidden:
        return QStringLiteral("may not be read");
    case SafeFile::State::tooLarge:
        return QStringLiteral("is too large");
    default:
        return QStringLiteral("cannot be read");
    }
}

} // namespace

RunLock::RunLock(const QString& document)
    : m_file(-1) {
    const QByteArray path = QFile::encodeName(lockPath(document));
    m_file = FileDescriptor(
        uninterrupted([&] { return ::open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR); }));
    if (!m_file.isOpen())
        throw PublicationFailure(QStringLiteral("no file can be made beside ") + document + QStringLiteral(": ") +
                                 qt_error_string(errno));
    if (uninterrupted([&] { return ::flock(m_file.get(), LOCK_EX | LOCK_NB); }) != 0)
        throw PublicationFailure(QStringLiteral("another run is at work on ") + document);
}

EarlierDocument readEarlierDocument(const QString& path) {
    const SafeFile::Contents contents = SafeFile::read(path, relayBodyLimit);
    if (contents.state == SafeFile::State::missing)
        return {};
    if (contents.state != SafeFile::State::read)
        return {{}, {}, path + QLatin1Char(' ') + reasonFor(contents.state)};
    try {
        const Snapshot snapshot = decodedDocument(contents.bytes);
        return {snapshot, parseInternetDateTime(snapshot.generatedAt).value(), {}};
    } catch (const DecodingError& error) {
        return {{}, {}, path + QStringLiteral(" is no snapshot: ") + QString::fromUtf8(error.what())};
    }
}

void requireLater(const QDateTime& generatedAt, const EarlierDocument& earlier) {
    if (earlier.snapshot && generatedAt <= earlier.generatedAt)
        throw PublicationFailure(QStringLiteral("the document that is there is of ") + earlier.snapshot->generatedAt +
                                 QStringLiteral(", and this machine's clock is not past that; set the clock, or remove "
                                                "the document"));
}

QByteArray encodedDocument(const Snapshot& snapshot) {
    try {
        const QByteArray bytes = JSON::encode(snapshot);
        static_cast<void>(decodedDocument(bytes));
        return bytes;
    } catch (const std::exception& failure) {
        throw PublicationFailure(QString::fromUtf8(failure.what()));
    }
}

Snapshot decodedDocument(QByteArrayView bytes) {
    const Snapshot snapshot = JSON::decode<Snapshot>(bytes);
    if (!parseInternetDateTime(snapshot.generatedAt)) {
        DecodingError error(DecodingError::Cause::corrupted, "expected a date and a time with an offset (RFC 3339)");
        error.prepend("generatedAt");
        throw error;
    }
    return snapshot;
}

} // namespace torvane

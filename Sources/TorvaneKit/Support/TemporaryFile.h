#pragma once

#include "Support/FileDescriptor.h"

#include <QByteArray>

namespace torvane {

/// A file under construction, beside the one whose place it will take. It is locked (flock) while it is being written:
/// that tells it from what a killed process has left over. Unless it takes that place it is removed.
class TemporaryFile final {
public:
    /// Makes an empty file of mode 0600 in the directory of `destination`.
    explicit TemporaryFile(const QByteArray& destination);
    ~TemporaryFile();

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Gives it mode 0644.
    [[nodiscard]] bool letEveryoneRead() const;

    /// Writes all of the bytes and waits until they are on the disk.
    [[nodiscard]] bool write(QByteArrayView bytes) const;

    /// Takes the destination's place and waits until the directory is on the disk.
    [[nodiscard]] bool takePlace();

    /// Removes the temporary files of this destination that nobody is writing any more.
    static void removeLeftOvers(const QByteArray& destination);

private:
    QByteArray m_destination;
    QByteArray m_path;
    FileDescriptor m_file;
    bool m_removes = false;
};

/// The directory part of a path.
QByteArray directoryOf(const QByteArray& path);

/// Waits until a directory's entries are on the disk.
[[nodiscard]] bool syncDirectory(const QByteArray& directory);

} // namespace torvane

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

    bool isOpen() const { return m_file.isOpen(); }

    /// For whoever fills it piece by piece; open for writing.
    int descriptor() const { return m_file.get(); }

    /// Waits until what was written is on the disk.
    [[nodiscard]] bool sync() const;

    /// Ends the writing: the descriptor is closed, and one for reading takes its place. That is of this very file,
    /// whatever has its name by now.
    [[nodiscard]] bool seal();

    /// Whether its name stands for this file still, and for nothing else that somebody put there.
    bool hasItsName() const;

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

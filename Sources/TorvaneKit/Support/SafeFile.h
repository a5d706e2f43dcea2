#pragma once

#include "Support/FileDescriptor.h"

#include <QByteArray>
#include <QString>

/// Small files that must survive crashes, full disks and power cuts. All of it blocks on the disk, so writing belongs
/// on the worker. Failures are answers, not exceptions: what a caller can do about them is to keep its value and try
/// again.
namespace torvane::SafeFile {

enum class State {
    read,
    missing,
    forbidden,
    unreadable, ///< a disk error, or something else than a regular file
    tooLarge,
};

struct Contents {
    State state;
    QByteArray bytes; ///< empty unless read
};

/// Reads a regular file of at most `limit` bytes. Never blocks on a fifo, a socket or a device in the file's place.
Contents read(const QString& path, qint64 limit);

/// Who may read a file.
enum class Readers { owner, everyone };

/// Replaces the file's content as a whole: whatever happens on the way, the path names the old bytes or the new ones,
/// never a part. True once the new bytes are on the disk to stay. Missing directories are made (mode 0700, as the XDG
/// base directory specification asks), the file gets mode 0600, or 0644 for everyone to read. A symbolic link is
/// written through. Anything else than a regular file in its place is left alone. Temporary files that a killed process
/// left beside it are removed.
[[nodiscard]] bool replace(const QString& path, QByteArrayView bytes, Readers readers = Readers::owner);

/// Gives the file a second name, its own name with this suffix, under which it outlives the next replacement. A file
/// that already has that name stays, and then nothing is done. False if the file cannot be kept.
[[nodiscard]] bool keepAside(const QString& path, const QString& suffix);

/// Takes the name of a file away; a symbolic link goes itself, not what it names. True once the name is gone from the
/// disk to stay, also if there was no such file.
[[nodiscard]] bool remove(const QString& path);

/// Keeps other processes from editing files of the same directory, for as long as it lives, so that what was read can
/// be written back. Makes the directory where it is missing. It waits for others, but not for one that hangs: after a
/// second it gives up, which risks another process's edit and never the file's integrity.
class EditLock final {
public:
    explicit EditLock(const QString& path);

private:
    FileDescriptor m_directory;
};

} // namespace torvane::SafeFile

#include "Support/SafeFile.h"

#include "Support/TemporaryFile.h"

#include <QFile>

#include <array>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>

namespace torvane::SafeFile {

namespace {

constexpr int mostLinks = 40; // As many as the kernel follows.
constexpr int lockAttempts = 1000;
constexpr timespec lockPause{0, 1'000'000}; // A millisecond: others hold the lock for one write.

/// Follows the path's symbolic links to the name that is to be replaced, which need not exist. None for a path that
/// cannot be followed.
std::optional<QByteArray> destinationOf(const QString& path) {
    QByteArray name = QFile::encodeName(path);
    for (int links = 0; links < mostLinks && !name.isEmpty(); ++links) {
        std::array<char, PATH_MAX> target;
        const ssize_t length = ::readlink(name, target.data(), target.size());
        if (length < 0) // Not a link, or nothing there yet.
            return errno == EINVAL || errno == ENOENT ? std::optional(name) : std::nullopt;
        const QByteArray next(target.data(), length);
        name = next.startsWith('/') ? next : directoryOf(name) + '/' + next;
    }
    return std::nullopt;
}

bool isRegular(const QByteArray& path) {
    struct stat status {};
    return ::lstat(path, &status) == 0 && S_ISREG(status.st_mode);
}

/// A fifo or a device in the file's place was put there on purpose; a rename would replace it.
bool isReplaceable(const QByteArray& path) {
    struct stat status {};
    return ::lstat(path, &status) == 0 ? S_ISREG(status.st_mode) : errno == ENOENT;
}

bool makeDirectory(const QByteArray& directory) {
    if (::mkdir(directory, S_IRWXU) == 0)
        return syncDirectory(directoryOf(directory));
    if (errno == EEXIST)
        return true;
    const QByteArray parent = directoryOf(directory);
    if (errno != ENOENT || parent == directory || !makeDirectory(parent))
        return false;
    return (::mkdir(directory, S_IRWXU) == 0 && syncDirectory(parent)) || errno == EEXIST;
}

State stateOfUnopened(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return State::missing;
    case EACCES:
    case EPERM:
        return State::forbidden;
    default:
        return State::unreadable;
    }
}

/// Reads up to one byte more than the limit, so that a file that grew meanwhile is noticed.
Contents readAll(int file, qint64 size, qint64 limit) {
    QByteArray bytes(std::min(size, limit) + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    while (true) {
        const auto room = static_cast<std::size_t>(bytes.size() - filled);
        const ssize_t count = uninterrupted([&] { return ::read(file, bytes.data() + filled, room); });
        if (count < 0)
            return {State::unreadable, {}};
        filled += count;
        if (filled > limit)
            return {State::tooLarge, {}};
        if (count == 0)
            break;
        if (filled == bytes.size())
            bytes.resize(std::min(filled * 2, limit + 1));
    }
    bytes.resize(filled);
    return {State::read, bytes};
}

} // namespace

Contents read(const QString& path, qint64 limit) {
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const FileDescriptor file(uninterrupted([&] { return ::open(QFile::encodeName(path), flags); }));
    if (!file.isOpen())
        return {stateOfUnopened(errno), {}};
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {State::unreadable, {}};
    if (status.st_size > limit)
        return {State::tooLarge, {}};
    return readAll(file.get(), status.st_size, limit);
}

bool replace(const QString& path, QByteArrayView bytes, Readers readers) {
    const std::optional<QByteArray> destination = destinationOf(path);
    if (!destination || !isReplaceable(*destination) || !makeDirectory(directoryOf(*destination)))
        return false;
    TemporaryFile::removeLeftOvers(*destination);
    TemporaryFile temporary(*destination);
    const bool isReadable = readers == Readers::owner || temporary.letEveryoneRead();
    return isReadable && temporary.write(bytes) && temporary.takePlace();
}

bool keepAside(const QString& path, const QString& suffix) {
    const std::optional<QByteArray> destination = destinationOf(path);
    if (!destination || !isRegular(*destination))
        return false;
    const QByteArray aside = *destination + QFile::encodeName(suffix);
    if (::link(*destination, aside) == 0 || errno == EEXIST)
        return true;
    // A file system without hard links: the file moves, and its place is empty until the next replacement.
    struct stat status {};
    return ::lstat(aside, &status) != 0 && errno == ENOENT && ::rename(*destination, aside) == 0;
}

bool remove(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    TemporaryFile::removeLeftOvers(name);
    if (::unlink(name) == 0)
        return syncDirectory(directoryOf(name));
    return errno == ENOENT || errno == ENOTDIR;
}

EditLock::EditLock(const QString& path)
    : m_directory(-1) {
    const std::optional<QByteArray> destination = destinationOf(path);
    if (!destination || !makeDirectory(directoryOf(*destination)))
        return;
    const QByteArray directory = directoryOf(*destination);
    m_directory = FileDescriptor(uninterrupted([&] { return ::open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    for (int attempt = 0; m_directory.isOpen() && attempt < lockAttempts; ++attempt) {
        if (::flock(m_directory.get(), LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR))
            return;
        ::nanosleep(&lockPause, nullptr);
    }
}

} // namespace torvane::SafeFile

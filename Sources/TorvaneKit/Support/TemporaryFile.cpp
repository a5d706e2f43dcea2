#include "Support/TemporaryFile.h"

#include "Support/FileIdentity.h"

#include <QRandomGenerator>

#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace torvane {

namespace {

constexpr int nameAttempts = 16;
constexpr int randomDigits = 16;
constexpr char extension[] = ".tmp";

QByteArray nameOf(const QByteArray& path) {
    return path.sliced(path.lastIndexOf('/') + 1);
}

/// What the names of a destination's temporary files begin with. Hidden, so that nobody takes them for settings.
QByteArray prefixFor(const QByteArray& destination) {
    return '.' + nameOf(destination) + '.';
}

QByteArray newPathFor(const QByteArray& destination) {
    std::array<quint32, 2> random{};
    QRandomGenerator::system()->fillRange(random.data(), random.size());
    const QByteArray digits =
        QByteArray::fromRawData(reinterpret_cast<const char*>(random.data()), sizeof random).toHex();
    return directoryOf(destination) + '/' + prefixFor(destination) + digits + extension;
}

/// A lock that the file system does not support counts as held: then nobody else can lock the file either, so that
/// nobody takes it for left over.
bool lockOwn(int file) {
    return uninterrupted([&] { return ::flock(file, LOCK_EX | LOCK_NB); }) == 0 || errno != EWOULDBLOCK;
}

void removeIfLeftOver(const QByteArray& path) {
    const FileDescriptor file(uninterrupted(
        [&] { return ::open(path, O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC); })); // NFS locks what can be written.
    if (file.isOpen() && uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) == 0)
        ::unlink(path);
}

} // namespace

TemporaryFile::TemporaryFile(const QByteArray& destination)
    : m_destination(destination)
    , m_file(-1) {
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        m_path = newPathFor(destination);
        m_file = FileDescriptor(
            uninterrupted([&] { return ::open(m_path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR); }));
        if (!m_file.isOpen() && errno != EEXIST)
            return;
        // Between its making and its locking, another process may have taken the file for left over, or may be
        // about to: then once more.
        if (m_file.isOpen() && lockOwn(m_file.get()) && ::access(m_path, F_OK) == 0) {
            m_removes = true;
            return;
        }
    }
    m_file = FileDescriptor(-1);
}

TemporaryFile::~TemporaryFile() {
    if (m_removes)
        ::unlink(m_path);
}

bool TemporaryFile::letEveryoneRead() const {
    return m_file.isOpen() && ::fchmod(m_file.get(), S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH) == 0;
}

bool TemporaryFile::write(QByteArrayView bytes) const {
    while (m_file.isOpen() && !bytes.isEmpty()) {
        const auto size = static_cast<std::size_t>(bytes.size());
        const ssize_t written = uninterrupted([&] { return ::write(m_file.get(), bytes.data(), size); });
        if (written <= 0)
            return false;
        bytes = bytes.sliced(written);
    }
    return sync();
}

bool TemporaryFile::sync() const {
    return m_file.isOpen() && uninterrupted([&] { return ::fsync(m_file.get()); }) == 0;
}

bool TemporaryFile::seal() {
    const QByteArray same = "/proc/self/fd/" + QByteArray::number(m_file.get());
    FileDescriptor reading(uninterrupted([&] { return ::open(same, O_RDONLY | O_CLOEXEC); }));
    if (!reading.isOpen() || FileIdentity::of(reading.get()) != FileIdentity::of(m_file.get()))
        return false;
    // Closed first: its lock is in the way of the other's.
    m_file = FileDescriptor(-1);
    m_file = std::move(reading);
    return lockOwn(m_file.get());
}

bool TemporaryFile::hasItsName() const {
    const std::optional<FileIdentity> own = FileIdentity::of(m_file.get());
    return own && own == FileIdentity::of(m_path);
}

bool TemporaryFile::takePlace() {
    if (::rename(m_path, m_destination) != 0)
        return false;
    m_removes = false;
    return syncDirectory(directoryOf(m_destination));
}

void TemporaryFile::removeLeftOvers(const QByteArray& destination) {
    const QByteArray directory = directoryOf(destination);
    const QByteArray prefix = prefixFor(destination);
    const auto close = [](DIR* open) { ::closedir(open); };
    const std::unique_ptr<DIR, decltype(close)> entries(::opendir(directory), close);
    if (!entries)
        return;
    while (const dirent* entry = ::readdir(entries.get())) {
        const QByteArray name(entry->d_name);
        const bool hasItsLength = name.size() == prefix.size() + randomDigits + qsizetype(sizeof extension) - 1;
        if (hasItsLength && name.startsWith(prefix) && name.endsWith(extension))
            removeIfLeftOver(directory + '/' + name);
    }
}

QByteArray directoryOf(const QByteArray& path) {
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : path.first(std::max<qsizetype>(slash, 1));
}

bool syncDirectory(const QByteArray& directory) {
    const FileDescriptor open(uninterrupted([&] { return ::open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    // Some file systems keep directories without being asked, and say that they cannot be asked.
    return open.isOpen() && (uninterrupted([&] { return ::fsync(open.get()); }) == 0 || errno == EINVAL);
}

} // namespace torvane

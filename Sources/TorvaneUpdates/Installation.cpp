#include "TorvaneUpdates/Installation.h"

#include "TorvaneUpdates/UpdateFailure.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;

/// Where the old file is kept: hidden, since people look for programs in this folder.
QByteArray keptPath(const QByteArray& path) {
    return directoryOf(path) + "/." + path.sliced(path.lastIndexOf('/') + 1) + ".previous";
}

/// With the system's own word for what went wrong.
[[noreturn]] void failOnDisk(const QString& what) {
    throw UpdateFailure(UpdateFault::disk, what + u": "_s + QString::fromLocal8Bit(std::strerror(errno)) + u'.');
}

/// The same, if it is ours to replace.
Executable ours(Executable executable) {
    if (const QString obstacle = obstacleTo(executable); !obstacle.isEmpty())
        throw UpdateFailure(UpdateFault::notOurs, u"The update cannot be installed: "_s + obstacle + u'.');
    return executable;
}

} // namespace

Installation::Installation(Executable executable)
    : m_executable(ours(std::move(executable)))
    , m_path(QFile::encodeName(m_executable.path))
    , m_lock(directoryOf(m_path))
    , m_file(m_path) {
    if (!m_lock.isHeld())
        throw UpdateFailure(UpdateFault::busy, u"Another velisk is updating this program at the moment."_s);
    if (!m_file.isOpen())
        failOnDisk(u"No file can be made beside the program"_s);
}

Installation::~Installation() {
    if (!m_isInstalled)
        return;
    try {
        rollBack();
    } catch (const UpdateFailure&) {
        // The new file stays then. It has been checked, and it ran.
    }
}

void Installation::check(qint64 length, const std::function<void(int descriptor)>& look) {
    if (!m_file.sync())
        failOnDisk(u"The update cannot be written to the disk"_s);
    if (!m_file.seal())
        failOnDisk(u"The update cannot be read from the disk"_s);
    struct stat status {};
    if (::fstat(descriptor(), &status) != 0 || status.st_size != length)
        throw UpdateFailure(UpdateFault::length, u"The update is not as long as its feed says."_s);
    look(descriptor());
}

void Installation::install() {
    ours(m_executable); // Days may have passed.
    struct stat old {};
    if (::lstat(m_path, &old) != 0 || ::fchmod(descriptor(), old.st_mode & permissions) != 0 || !m_file.sync())
        failOnDisk(u"The update cannot be made runnable"_s);
    keepOld();
    takePlace();
}

void Installation::keepOld() const {
    const QByteArray kept = keptPath(m_path);
    ::unlink(kept); // One of an earlier update that was cut off.
    if (::link(m_path, kept) != 0)
        failOnDisk(u"The program cannot be kept for the case that the update fails"_s);
    // Somebody may have brought another program since the last look, a package manager for one: that one is theirs.
    if (FileIdentity::of(kept.constData()) == m_executable.identity)
        return;
    ::unlink(kept);
    throw UpdateFailure(UpdateFault::notOurs, u"The program was replaced by somebody else meanwhile."_s);
}

/// A name says nothing of the file that it stands for, so that this is looked at before the renaming and after it.
void Installation::takePlace() {
    const bool hasItsName = m_file.hasItsName();
    const bool isRenamed = hasItsName && m_file.takePlace();
    const int error = errno;
    m_isInstalled = isRenamed && FileIdentity::of(m_path.constData()) == FileIdentity::of(descriptor());
    if (m_isInstalled)
        return;
    bringBack();
    if (!hasItsName || isRenamed)
        throw UpdateFailure(UpdateFault::exchanged, u"The update was exchanged for another file meanwhile."_s);
    errno = error;
    failOnDisk(u"The update cannot take the program's place"_s);
}

void Installation::rollBack() {
    if (!std::exchange(m_isInstalled, false))
        return;
    if (FileIdentity::of(m_path.constData()) == FileIdentity::of(descriptor()))
        bringBack();
    else
        ::unlink(keptPath(m_path)); // Somebody else has brought another program meanwhile: that one stays.
}

void Installation::bringBack() const {
    // Where the renaming has not happened both names are the old file's: then the kept one is just one too many.
    if (::rename(keptPath(m_path), m_path) != 0)
        failOnDisk(u"The program cannot be brought back"_s);
    ::unlink(keptPath(m_path));
    if (!syncDirectory(directoryOf(m_path)))
        failOnDisk(u"The program was brought back, but may not stay so"_s);
}

void Installation::keep() {
    m_isInstalled = false;
    // One that cannot be removed now goes when the program starts the next time.
    if (::unlink(keptPath(m_path)) == 0) [[maybe_unused]]
        const bool isOnDisk = syncDirectory(directoryOf(m_path));
}

void Installation::removeLeftOvers(const Executable& executable) {
    if (!obstacleTo(executable).isEmpty())
        return;
    const QByteArray path = QFile::encodeName(executable.path);
    const UpdateLock lock(directoryOf(path));
    if (!lock.isExclusive())
        return;
    ::unlink(keptPath(path));
    TemporaryFile::removeLeftOvers(path);
}

} // namespace torvane::Updates

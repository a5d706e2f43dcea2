#include "TorvaneUpdates/Obstacle.h"

#include "Support/PackedProgram.h"
#include "Support/TemporaryFile.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

/// Where package managers keep what they bring; root could write there, but must not.
bool isSystems(const QString& path) {
    return path.startsWith("/usr/"_L1) || path.startsWith("/bin/"_L1) || path.startsWith("/sbin/"_L1);
}

/// A file inside one that was packed as a whole (AppImage, snap), unpacked or mounted for this run alone.
bool isInsidePackage(const QString& path) {
    return isPackedIn("APPDIR", path) || isPackedIn("SNAP", path) || isInFlatpak();
}

/// Root may write what nobody is meant to: the owner's own bit counts too.
bool isWritable(const QByteArray& path, const struct stat& status, int access) {
    const bool isWriteProtected = status.st_uid == ::geteuid() && !(status.st_mode & S_IWUSR);
    return !isWriteProtected && ::faccessat(AT_FDCWD, path, access, AT_EACCESS) == 0;
}

} // namespace

Executable Executable::at(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    const QByteArray name = QFile::encodeName(canonical);
    return {canonical, canonical.isEmpty() ? std::nullopt : FileIdentity::of(name.constData())};
}

QString obstacleTo(const Executable& started) {
    const QByteArray path = QFile::encodeName(started.path);
    struct stat file {};
    const bool isThere = !path.isEmpty() && ::lstat(path, &file) == 0 && S_ISREG(file.st_mode);
    if (!isThere || started.identity != FileIdentity{file.st_dev, file.st_ino})
        return u"the file of this copy has been moved or replaced since it was started"_s;
    if (isSystems(started.path))
        return u"this copy belongs to the system"_s;
    if (isInsidePackage(started.path))
        return u"this copy is part of a package"_s;
    if (file.st_uid != ::geteuid())
        return u"this copy belongs to another user"_s;
    const QByteArray folder = directoryOf(path);
    struct stat around {};
    if (::stat(folder, &around) != 0 || !isWritable(folder, around, W_OK | X_OK))
        return u"the folder of this copy cannot be written"_s;
    if (!isWritable(path, file, W_OK))
        return u"this copy is write-protected"_s;
    return {};
}

} // namespace torvane::Updates

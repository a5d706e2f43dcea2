#pragma once

#include <QStringList>

/// Commands that run in a mount namespace of their own, with disks that the rest of the machine does not see.
namespace torvane::OwnMounts {

/// What stands before a command that is to run after a piece of shell in which "$0" is the directory.
QStringList wrapper(const QString& shell, const QString& directory);

/// A piece of shell that mounts a small disk in memory there, of so many KiB.
QString smallDisk(int size);

/// Whether this user may mount in a namespace of their own; in some containers nobody may. Says so where not.
bool areAllowed();

} // namespace torvane::OwnMounts

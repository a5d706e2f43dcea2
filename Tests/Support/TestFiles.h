#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Plain file access for tests, without any of the care that they are there to prove.
namespace torvane::TestFiles {

/// Writes a file, making its directory where it is missing; ends the program if that fails.
void put(const QString& path, const QByteArray& bytes);

/// The file's bytes, or a text that says that it cannot be opened.
QByteArray contentOf(const QString& path);

/// The same once the worker has written all that it was given.
QByteArray contentOnceWritten(const QString& path);

/// The sorted names of all that stands in a directory, hidden or not.
QStringList entriesOf(const QString& directory);

} // namespace torvane::TestFiles

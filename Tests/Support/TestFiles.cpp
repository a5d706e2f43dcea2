#include "Support/TestFiles.h"

#include "Support/Worker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace torvane::TestFiles {

void put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    const bool isOpen = QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly);
    if (!isOpen || file.write(bytes) != bytes.size() || !file.flush())
        qFatal("%s: %s", qUtf8Printable(path), qUtf8Printable(file.errorString()));
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("cannot be opened");
}

QByteArray contentOnceWritten(const QString& path) {
    worker().waitForDone();
    return contentOf(path);
}

QStringList entriesOf(const QString& directory) {
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace torvane::TestFiles

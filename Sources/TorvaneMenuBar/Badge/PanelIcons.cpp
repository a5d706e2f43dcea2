#include "Badge/PanelIcons.h"

#include "Support/BaseDirectory.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <string>
#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto prefix = "velisk-"_L1;
constexpr auto unfinished = ".part"_L1;

QString folderForIcons() {
    const QString runtime = BaseDirectory::runtime();
    return runtime.isEmpty() ? runtime : runtime + "/velisk/icons"_L1;
}

QString processNumber() {
    return QString::fromStdString(std::to_string(QCoreApplication::applicationPid()));
}

/// Whether the file is that of another process that runs: of a demo beside the program, or of another display's.
bool isOfAnother(const QString& file) {
    const QString process = file.section(u'-', 1, 1);
    return process != processNumber() && QFile::exists("/proc/"_L1 + process);
}

/// The file is whole under its name, or not there.
bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path + unfinished);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const bool isWhole = file.write(bytes) == bytes.size();
    file.close();
    if (isWhole && file.rename(path))
        return true;
    file.remove();
    return false;
}

} // namespace

PanelIcons::PanelIcons()
    : m_folder(folderForIcons()) {}

std::optional<QString> PanelIcons::put(const QByteArray& picture, QLatin1StringView suffix) {
    if (m_folder.isEmpty() || !QDir().mkpath(m_folder))
        return std::nullopt;
    const QByteArray hash = QCryptographicHash::hash(picture, QCryptographicHash::Sha1).toHex().left(16);
    const QString file = prefix + processNumber() + u'-' + QString::fromLatin1(hash) + suffix;
    const QString path = m_folder + u'/' + file;
    if (!QFile::exists(path) && !write(path, picture))
        return std::nullopt;
    if (file != m_current)
        m_previous = std::exchange(m_current, file);
    removeOthers();
    return file.section(u'.', 0, 0);
}

/// Those of a process that was killed too.
void PanelIcons::removeOthers() const {
    QDir folder(m_folder);
    for (const QString& name : folder.entryList(QDir::Files)) {
        if (name.startsWith(prefix) && name != m_current && name != m_previous && !isOfAnother(name))
            folder.remove(name);
    }
}

} // namespace torvane

#include "Support/DefaultsFiles.h"

#include "Support/Notice.h"
#include "Support/Worker.h"

namespace torvane {

namespace {

constexpr qint64 preferencesLimit = 1 << 20; ///< bytes; a file beyond it was not written by this program
constexpr qint64 dataLimit = 64 << 20;

/// The members that are not among those written: never written, or with newer values meanwhile.
PreferencesDocument remaining(const PreferencesDocument& unwritten, const PreferencesDocument& written) {
    PreferencesDocument result;
    for (const auto& [key, value] : unwritten.members()) {
        if (!written.members().contains({key, value}))
            result.assign(key, value);
    }
    return result;
}

} // namespace

DefaultsFiles::DefaultsFiles(QString preferencesPath, QString dataDirectory)
    : m_preferencesPath(std::move(preferencesPath))
    , m_dataDirectory(std::move(dataDirectory)) {}

PreferencesDocument DefaultsFiles::readPreferences() {
    const SafeFile::Contents file = SafeFile::read(m_preferencesPath, preferencesLimit);
    const QMutexLocker lock(&m_mutex);
    m_known = PreferencesDocument::fromBytes(file.bytes).value_or(PreferencesDocument());
    return m_known;
}

void DefaultsFiles::writePreference(const QString& key, const QByteArray& value) {
    const QMutexLocker lock(&m_mutex);
    m_known.assign(key, value);
    m_unwrittenPreferences.assign(key, value);
    schedule();
}

std::optional<QByteArray> DefaultsFiles::readData(const QString& key) const {
    {
        const QMutexLocker lock(&m_mutex);
        const auto unwritten = m_unwrittenData.constFind(key);
        if (unwritten != m_unwrittenData.constEnd())
            return *unwritten;
    }
    const SafeFile::Contents file = SafeFile::read(dataPath(key), dataLimit);
    return file.state == SafeFile::State::read ? std::optional(file.bytes) : std::nullopt;
}

void DefaultsFiles::writeData(const QString& key, const QByteArray& bytes) {
    const QMutexLocker lock(&m_mutex);
    m_unwrittenData.insert(key, bytes);
    schedule();
}

void DefaultsFiles::schedule() {
    if (std::exchange(m_isScheduled, true))
        return;
    worker().start([self = shared_from_this()] { self->writeAll(); });
}

void DefaultsFiles::writeAll() {
    QMutexLocker lock(&m_mutex);
    m_isScheduled = false;
    const PreferencesDocument preferences = m_unwrittenPreferences;
    const PreferencesDocument known = m_known;
    const QMap<QString, QByteArray> data = m_unwrittenData;
    lock.unlock();
    if (!preferences.members().isEmpty()) {
        if (writePreferences(preferences, known)) {
            lock.relock();
            m_unwrittenPreferences = remaining(m_unwrittenPreferences, preferences);
            lock.unlock();
        } else {
            complainOnce();
        }
    }
    for (auto entry = data.begin(); entry != data.end(); ++entry) {
        if (!SafeFile::replace(dataPath(entry.key()), entry.value()))
            continue;
        lock.relock();
        if (m_unwrittenData.value(entry.key()) == entry.value())
            m_unwrittenData.remove(entry.key());
        lock.unlock();
    }
}

/// A choice that is lost with the session is worth a word; the cache is not, which fills by itself.
void DefaultsFiles::complainOnce() {
    if (std::exchange(m_hasComplained, true))
        return;
    const QString place = m_preferencesPath.isEmpty() ? QStringLiteral("there is no home directory")
                                                      : m_preferencesPath + QStringLiteral(" cannot be written");
    notice(QStringLiteral("Your settings hold for this session only: ") + place + QLatin1Char('.'));
}

bool DefaultsFiles::writePreferences(const PreferencesDocument& changes, PreferencesDocument known) const {
    const SafeFile::EditLock lock(m_preferencesPath);
    const SafeFile::Contents file = SafeFile::read(m_preferencesPath, preferencesLimit);
    std::optional<PreferencesDocument> document = PreferencesDocument::fromBytes(file.bytes);
    if (!document && !mayBeReplaced(file))
        return false;
    if (!document)
        document = std::move(known);
    for (const auto& [key, value] : changes.members())
        document->assign(key, value);
    const QByteArray bytes = document->toBytes();
    // What could not be read back would cost all the other values too.
    return bytes.size() <= preferencesLimit && SafeFile::replace(m_preferencesPath, bytes);
}

/// What is no document is kept aside first. A disk error may pass, and what is no file at all is not ours to touch:
/// then the values wait in memory.
bool DefaultsFiles::mayBeReplaced(const SafeFile::Contents& file) const {
    using enum SafeFile::State;
    const bool isEmpty = file.state == read && file.bytes.isEmpty(); // It holds nothing worth keeping.
    if (file.state == missing || isEmpty)
        return true;
    return file.state != unreadable && SafeFile::keepAside(m_preferencesPath, QStringLiteral(".damaged"));
}

QString DefaultsFiles::dataPath(const QString& key) const {
    Q_ASSERT(!key.isEmpty() && !key.contains(QLatin1Char('/')));
    return m_dataDirectory.isEmpty() ? QString() : m_dataDirectory + QLatin1Char('/') + key;
}

} // namespace torvane

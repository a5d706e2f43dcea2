#pragma once

#include "Support/PreferencesDocument.h"
#include "Support/SafeFile.h"

#include <QMap>
#include <QMutex>

#include <memory>

namespace torvane {

/// The disk side of UserDefaults: values are handed over on the main thread and written on the worker, in order. While
/// a write waits or runs, newer values of a file take the place of older ones. A value whose write failed waits for the
/// next hand-over and is then tried again, whichever file that is for.
///
/// A preferences file is edited, not overwritten: under a lock its present members are read, the assigned ones laid
/// over them, and the result takes its place. So programs that run side by side keep each other's values.
class DefaultsFiles final : public std::enable_shared_from_this<DefaultsFiles> {
public:
    DefaultsFiles(QString preferencesPath, QString dataDirectory);

    /// What the preferences file holds: no members if it is missing, not readable or damaged.
    PreferencesDocument readPreferences();

    void writePreference(const QString& key, const QByteArray& value);

    /// The entry's newest bytes, written or not.
    std::optional<QByteArray> readData(const QString& key) const;

    void writeData(const QString& key, const QByteArray& bytes);

private:
    void schedule();
    void writeAll();
    void complainOnce();
    bool writePreferences(const PreferencesDocument& changes, PreferencesDocument known) const;
    bool mayBeReplaced(const SafeFile::Contents& file) const;
    QString dataPath(const QString& key) const;

    const QString m_preferencesPath;
    const QString m_dataDirectory;
    mutable QMutex m_mutex;      ///< guards what follows
    PreferencesDocument m_known; ///< what this program has read and assigned, for when the file has gone
    PreferencesDocument m_unwrittenPreferences;
    QMap<QString, QByteArray> m_unwrittenData;
    bool m_isScheduled = false;
    bool m_hasComplained = false; ///< the worker's alone
};

} // namespace torvane

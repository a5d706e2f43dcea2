#pragma once

#include "Support/PreferencesDocument.h"

#include <memory>

namespace torvane {

class DefaultsFiles;

/// A user's preferences by key, and larger data beside them. Lives on the main thread, which never waits for a write:
/// a new value is in memory at once and on its way to the disk. Of writes that fail the first is told of (see notice);
/// the values stay in memory and are tried again with the next one that is set. What is under way is awaited when the
/// program ends.
///
/// The preferences are one JSON object in one file. Members that nobody assigns stay as they are, of whatever type.
/// A file that is no JSON object (or is larger than 1 MiB) counts as empty; before it is replaced, at the first
/// assignment, it is kept aside with the suffix ".damaged" unless there is such a file already.
/// Each data entry is a file of its own, named by its key, of the bare bytes (64 MiB at most).
class UserDefaults final {
public:
    /// Reads the preferences once, here.
    UserDefaults(const QString& preferencesPath, const QString& dataDirectory);
    ~UserDefaults();

    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// The application's own, in the XDG base directories: "preferences.json" below the one for configuration, data
    /// below the one for caches. Without any home directory nothing is read or written.
    static UserDefaults standard(const QString& application);

    // The value of a key, unless it is missing or of another type.
    std::optional<bool> boolean(const QString& key) const { return m_preferences.boolean(key); }
    std::optional<qint64> integer(const QString& key) const { return m_preferences.integer(key); }
    std::optional<QString> string(const QString& key) const { return m_preferences.string(key); }
    std::optional<QStringList> stringList(const QString& key) const { return m_preferences.stringList(key); }

    void set(const QString& key, bool value);
    void set(const QString& key, qint64 value);
    void set(const QString& key, const QString& value);
    void set(const QString& key, const QStringList& value);
    void set(const QString& key, const char* value) = delete; ///< would be taken for a boolean

    /// The bytes of a data entry, if it can be read. The key is one file name.
    std::optional<QByteArray> data(const QString& key) const;
    void setData(const QString& key, const QByteArray& bytes);

private:
    template <class T>
    void assign(const QString& key, const T& value);

    std::shared_ptr<DefaultsFiles> m_files; ///< shared with the writes under way
    PreferencesDocument m_preferences;
};

} // namespace torvane

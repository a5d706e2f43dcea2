#pragma once

#include "Support/Published.h"
#include "Support/RawEnum.h"
#include "Support/UserDefaults.h"

#include <QSet>

#include <algorithm>
#include <concepts>

namespace torvane {

/// An observable object whose settings are kept in the user's defaults, which must outlive it.
class SettingsOwner : public ObservableObject {
public:
    explicit SettingsOwner(UserDefaults& defaults)
        : m_defaults(defaults) {}

    UserDefaults& defaults() const { return m_defaults; }

private:
    UserDefaults& m_defaults;
};

/// A type that is stored as one string, and that every string stands for a value of.
template <class T>
concept StorageValue = requires(const T& value, const QString& text) {
    { value.storageValue() } -> std::convertible_to<QString>;
    { T::fromStorageValue(text) } -> std::same_as<T>;
};

namespace detail {

/// How a setting's type is stored: `read` gives none where the key is missing or its value is unusable.
template <class T>
struct Stored;

template <>
struct Stored<bool> {
    static std::optional<bool> read(const UserDefaults& defaults, const QString& key) { return defaults.boolean(key); }
    static bool form(bool value) { return value; }
};

template <>
struct Stored<qint64> {
    static std::optional<qint64> read(const UserDefaults& defaults, const QString& key) {
        return defaults.integer(key);
    }
    static qint64 form(qint64 value) { return value; }
};

template <>
struct Stored<QSet<QString>> {
    static std::optional<QSet<QString>> read(const UserDefaults& defaults, const QString& key) {
        const std::optional<QStringList> list = defaults.stringList(key);
        return list ? std::optional(QSet<QString>(list->begin(), list->end())) : std::nullopt;
    }
    static QStringList form(const QSet<QString>& value) {
        QStringList list = value.values();
        list.sort(); // A set's own order differs from run to run; people may read and compare the file.
        return list;
    }
};

template <RawEnum E>
struct Stored<E> {
    static std::optional<E> read(const UserDefaults& defaults, const QString& key) {
        const std::optional<QString> text = defaults.string(key);
        return text ? fromRawValue<E>(*text) : std::nullopt;
    }
    static QString form(E value) { return QString(rawValue(value)); }
};

template <StorageValue T>
struct Stored<T> {
    static std::optional<T> read(const UserDefaults& defaults, const QString& key) {
        const std::optional<QString> text = defaults.string(key);
        return text ? std::optional(T::fromStorageValue(*text)) : std::nullopt;
    }
    static QString form(const T& value) { return value.storageValue(); }
};

} // namespace detail

/// One setting, one line: `Setting<bool> sound{this, "sound", false};`. It is read once, when it is made; where nothing
/// usable is stored it has its default, and nothing is written until it is assigned. Assigning it, an equal value too,
/// tells the observers, sets the value and stores it.
template <class T>
class Setting final : public Published<T> {
public:
    Setting(SettingsOwner* owner, const char* key, T fallback)
        : Published<T>(owner, detail::Stored<T>::read(owner->defaults(), QLatin1StringView(key)).value_or(fallback))
        , m_defaults(owner->defaults())
        , m_key(QLatin1StringView(key)) {}

    Setting& operator=(T newValue) {
        Published<T>::operator=(std::move(newValue));
        m_defaults.set(m_key, detail::Stored<T>::form(this->value()));
        return *this;
    }

private:
    UserDefaults& m_defaults;
    QString m_key;
};

} // namespace torvane

#include "Support/PreferencesDocument.h"

#include "Support/JSON.h"

#include <algorithm>

namespace torvane {

std::optional<PreferencesDocument> PreferencesDocument::fromBytes(QByteArrayView bytes) {
    if (bytes.isEmpty())
        return std::nullopt; // As before the first setting was changed: the first error that is thrown is slow.
    try {
        PreferencesDocument document;
        document.m_members = JSON::members(bytes);
        return document;
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

QByteArray PreferencesDocument::toBytes() const {
    return JSON::object(m_members);
}

void PreferencesDocument::assign(const QString& key, const QByteArray& value) {
    const auto member = std::ranges::find(m_members, key, &Member::first);
    if (member == m_members.end())
        m_members.append({key, value});
    else
        member->second = value;
}

std::optional<bool> PreferencesDocument::boolean(const QString& key) const {
    return value<bool>(key);
}

std::optional<qint64> PreferencesDocument::integer(const QString& key) const {
    return value<qint64>(key);
}

std::optional<QString> PreferencesDocument::string(const QString& key) const {
    return value<QString>(key);
}

std::optional<QStringList> PreferencesDocument::stringList(const QString& key) const {
    return value<QStringList>(key);
}

template <class T>
std::optional<T> PreferencesDocument::value(const QString& key) const {
    const auto member = std::ranges::find(m_members, key, &Member::first);
    if (member == m_members.end())
        return std::nullopt;
    try {
        return JSON::decode<T>(member->second);
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

} // namespace torvane

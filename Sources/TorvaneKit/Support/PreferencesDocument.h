#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace torvane {

/// The text of a preferences file: one JSON object, whose members are kept as they were written. What cannot be
/// understood is neither changed nor lost.
class PreferencesDocument final {
public:
    using Member = std::pair<QString, QByteArray>; ///< a key and the text of its JSON value

    PreferencesDocument() = default; ///< without any member

    /// None unless the bytes are one JSON object. Of duplicate keys the last one counts.
    static std::optional<PreferencesDocument> fromBytes(QByteArrayView bytes);

    /// One member per line, for people to read; ends with a line feed.
    QByteArray toBytes() const;

    const QList<Member>& members() const { return m_members; }

    /// Replaces the key's value in its place, or adds the member at the end.
    void assign(const QString& key, const QByteArray& value);

    // The value of a key, unless it is missing or of another type.
    std::optional<bool> boolean(const QString& key) const;
    std::optional<qint64> integer(const QString& key) const; ///< written without fraction and exponent
    std::optional<QString> string(const QString& key) const;
    std::optional<QStringList> stringList(const QString& key) const;

    bool operator==(const PreferencesDocument&) const = default;

private:
    template <class T>
    std::optional<T> value(const QString& key) const;

    QList<Member> m_members;
};

} // namespace torvane

#include "Support/UserDefaults.h"

#include "Support/BaseDirectory.h"
#include "Support/DefaultsFiles.h"
#include "Support/JSON.h"

namespace torvane {

namespace {

QString below(const QString& directory, const QString& path) {
    return directory.isEmpty() ? QString() : directory + QLatin1Char('/') + path;
}

/// The text with U+FFFD in the place of lone surrogates, which no file can hold.
QString unicode(QString text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

UserDefaults::UserDefaults(const QString& preferencesPath, const QString& dataDirectory)
    : m_files(std::make_shared<DefaultsFiles>(preferencesPath, dataDirectory))
    , m_preferences(m_files->readPreferences()) {}

UserDefaults::~UserDefaults() = default;

UserDefaults UserDefaults::standard(const QString& application) {
    return UserDefaults(below(BaseDirectory::config(), application + QStringLiteral("/preferences.json")),
                        below(BaseDirectory::cache(), application));
}

void UserDefaults::set(const QString& key, bool value) {
    assign(key, value);
}

void UserDefaults::set(const QString& key, qint64 value) {
    assign(key, value);
}

void UserDefaults::set(const QString& key, const QString& value) {
    assign(key, unicode(value));
}

void UserDefaults::set(const QString& key, const QStringList& value) {
    QStringList texts;
    for (const QString& text : value)
        texts.append(unicode(text));
    assign(key, texts);
}

template <class T>
void UserDefaults::assign(const QString& key, const T& value) {
    const QByteArray text = JSON::encode(value);
    m_preferences.assign(key, text);
    m_files->writePreference(key, text);
}

std::optional<QByteArray> UserDefaults::data(const QString& key) const {
    return m_files->readData(key);
}

void UserDefaults::setData(const QString& key, const QByteArray& bytes) {
    m_files->writeData(key, bytes);
}

} // namespace torvane

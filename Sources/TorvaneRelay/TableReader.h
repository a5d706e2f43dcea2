#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <set>
#include <string>
#include <toml++/toml.h>

namespace torvane {

/// Reads a TOML table key by key. Every function throws TableError, which names the line and the key, where the value
/// is not what is asked for.
class TableReader final {
public:
    /// The whole document.
    explicit TableReader(const QByteArray& toml);

    bool has(const std::string& key) const;
    QString text(const std::string& key);      ///< not empty
    QStringList texts(const std::string& key); ///< at least one, none empty
    double number(const std::string& key, double least, double most);
    qint64 wholeNumber(const std::string& key, qint64 least, qint64 most);
    TableReader table(const std::string& key);
    QList<TableReader> tables(const std::string& key); ///< those of [[key]]; may be missing

    /// A key that nobody asked for is a mistake.
    void requireNothingElse() const;

    [[noreturn]] void fail(const std::string& key, const std::string& what) const;

private:
    TableReader(std::shared_ptr<const toml::table> document, const toml::table& table, std::string path);
    const toml::node& node(const std::string& key);

    std::shared_ptr<const toml::table> m_document; // What all its tables are parts of.
    const toml::table* m_table;
    std::string m_path;
    std::set<std::string, std::less<>> m_asked;
};

} // namespace torvane

#include "TableReader.h"

#include "RelayTable.h"

#include <cmath>

namespace torvane {

namespace {

std::string place(const toml::source_region& source) {
    return "line " + std::to_string(source.begin.line) + ": ";
}

std::shared_ptr<const toml::table> parsed(const QByteArray& toml) {
    try {
        return std::make_shared<const toml::table>(
            toml::parse(std::string_view(toml.constData(), static_cast<std::size_t>(toml.size()))));
    } catch (const toml::parse_error& error) {
        throw TableError(place(error.source()) + std::string(error.description()));
    }
}

QString textOf(const toml::node& node) {
    return QString::fromStdString(node.value<std::string>().value_or(std::string()));
}

} // namespace

TableReader::TableReader(const QByteArray& toml)
    : m_document(parsed(toml))
    , m_table(m_document.get()) {}

TableReader::TableReader(std::shared_ptr<const toml::table> document, const toml::table& table, std::string path)
    : m_document(std::move(document))
    , m_table(&table)
    , m_path(std::move(path)) {}

bool TableReader::has(const std::string& key) const {
    return m_table->contains(key);
}

const toml::node& TableReader::node(const std::string& key) {
    const toml::node* found = m_table->get(key);
    if (!found)
        fail(key, "missing");
    m_asked.insert(key);
    return *found;
}

QString TableReader::text(const std::string& key) {
    const toml::node& value = node(key);
    if (!value.is_string() || textOf(value).isEmpty())
        fail(key, "expected a text");
    return textOf(value);
}

QStringList TableReader::texts(const std::string& key) {
    const toml::array* list = node(key).as_array();
    if (!list || list->empty() || !list->is_homogeneous(toml::node_type::string))
        fail(key, "expected a list of texts");
    QStringList texts;
    for (const toml::node& element : *list)
        texts.append(textOf(element));
    return texts;
}

double TableReader::number(const std::string& key, double least, double most) {
    const std::optional<double> value = node(key).value<double>();
    if (!value || !(*value >= least && *value <= most))
        fail(key, "expected a number from " + std::to_string(least) + " to " + std::to_string(most));
    return *value;
}

qint64 TableReader::wholeNumber(const std::string& key, qint64 least, qint64 most) {
    // Not `value`, which converts: a float beyond all integers cannot be.
    const toml::value<int64_t>* number = node(key).as_integer();
    if (!number || number->get() < least || number->get() > most)
        fail(key, "expected a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return number->get();
}

TableReader TableReader::table(const std::string& key) {
    const toml::table* inner = node(key).as_table();
    if (!inner)
        fail(key, "expected a table");
    return {m_document, *inner, m_path + key + '.'};
}

QList<TableReader> TableReader::tables(const std::string& key) {
    QList<TableReader> readers;
    if (!has(key))
        return readers;
    const toml::array* list = node(key).as_array();
    if (!list || !list->is_homogeneous(toml::node_type::table))
        fail(key, "expected tables, each headed [[" + key + "]]");
    for (const toml::node& element : *list) {
        const std::string path = m_path + key + '[' + std::to_string(readers.size()) + "].";
        readers.append(TableReader(m_document, *element.as_table(), path));
    }
    return readers;
}

void TableReader::requireNothingElse() const {
    for (const auto& [key, value] : *m_table) {
        if (!m_asked.contains(key.str()))
            fail(std::string(key.str()), "means nothing here");
    }
}

void TableReader::fail(const std::string& key, const std::string& what) const {
    const toml::node* found = m_table->get(key);
    throw TableError(place(found ? found->source() : m_table->source()) + m_path + key + ": " + what);
}

} // namespace torvane

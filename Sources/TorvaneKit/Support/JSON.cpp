#include "Support/JSON.h"

#include <QHash>

namespace torvane::JSON {

namespace {

/// The text from a value's first byte to the next key or the object's end, less the comma and white space between.
QByteArray rawText(QByteArrayView document, Value value, qsizetype end) {
    const qsizetype begin = value.offset() - (value.kind() == Kind::string ? 1 : 0);
    while (std::string_view(", \t\r\n").find(document[end - 1]) != std::string_view::npos)
        --end;
    return document.sliced(begin, end - begin).toByteArray();
}

} // namespace

Members members(QByteArrayView bytes) {
    const Document document(bytes);
    const Value root = document.root();
    require(root, Kind::object);
    Members result;
    QHash<QString, qsizetype> places;
    for (Value key = root.first(); key != root.past(); key = key.next().next()) {
        const Value value = key.next();
        const Value after = value.next();
        const qsizetype end = after == root.past() ? bytes.lastIndexOf('}') : after.offset() - 1;
        const QString name = readString(key);
        const auto place = places.constFind(name);
        const QByteArray text = rawText(bytes, value, end);
        if (place != places.cend()) {
            result[*place].second = text;
        } else {
            places.insert(name, result.size());
            result.append({name, text});
        }
    }
    return result;
}

QByteArray object(const Members& members) {
    QByteArray out("{");
    bool first = true;
    for (const auto& [name, text] : members) {
        separate(out, first);
        out.append("\n  ");
        writeString(out, name);
        out.append(": ").append(text);
    }
    return out.append(members.isEmpty() ? "}\n" : "\n}\n");
}

} // namespace torvane::JSON

// Another instruction set than the library's own copy of the reader: a namespace of its own keeps the two apart.
#define RAPIDJSON_NAMESPACE rapidjson_tree
#define RAPIDJSON_NAMESPACE_BEGIN namespace rapidjson_tree {
#define RAPIDJSON_NAMESPACE_END }

#include "DocumentTreeExtraction.h"

#include "Support/JSONRecord.h"

#include <rapidjson/document.h>

#include <stdexcept>

namespace torvane {

namespace {

using Node = rapidjson_tree::Value;

const Node& wanted(const Node& node, bool right) {
    if (!right)
        throw std::runtime_error("not of the wanted type");
    return node;
}

template <class T>
T extract(const Node& node);

template <class T>
T extractRecord(const Node& node) {
    wanted(node, node.IsObject());
    T record{};
    const auto extractMember = [&](const auto& key) {
        using Member = std::remove_reference_t<decltype(record.*key.member)>;
        const rapidjson_tree::Value name(rapidjson_tree::StringRef(key.name.data(), key.name.size()));
        const auto found = node.FindMember(name);
        if (found != node.MemberEnd() && !found->value.IsNull())
            record.*key.member = extract<Member>(found->value);
        else if (!JSON::isOptional<Member>)
            throw std::runtime_error("missing");
    };
    std::apply([&](const auto&... key) { (extractMember(key), ...); }, T::keys);
    return record;
}

template <class List>
List extractList(const Node& node) {
    wanted(node, node.IsArray());
    List list;
    list.reserve(node.Size());
    for (const Node& element : node.GetArray())
        list.append(extract<typename List::value_type>(element));
    return list;
}

template <class T>
T extract(const Node& node) {
    if constexpr (JSON::isOptional<T>)
        return extract<typename T::value_type>(node);
    else if constexpr (JSON::isList<T>)
        return extractList<T>(node);
    else if constexpr (JSON::Record<T>)
        return extractRecord<T>(node);
    else if constexpr (std::same_as<T, QString>)
        return QString::fromUtf8(wanted(node, node.IsString()).GetString(), node.GetStringLength());
    else
        return wanted(node, node.IsNumber()).GetDouble();
}

} // namespace

Snapshot extractFromTree(QByteArrayView bytes) {
    constexpr unsigned flags = rapidjson_tree::kParseFullPrecisionFlag | rapidjson_tree::kParseValidateEncodingFlag;
    rapidjson_tree::Document document;
    document.Parse<flags>(bytes.data(), static_cast<std::size_t>(bytes.size()));
    if (document.HasParseError())
        throw std::runtime_error("not JSON");
    return extract<Snapshot>(document);
}

} // namespace torvane

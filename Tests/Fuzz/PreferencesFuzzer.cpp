#include "Support/PreferencesDocument.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Reads a member as each type; the text of a value is one type at most.
void readAsEachType(const PreferencesDocument& document, const QString& key) {
    const int readable = document.boolean(key).has_value() + document.integer(key).has_value() +
                         document.string(key).has_value() + document.stringList(key).has_value();
    require(readable <= 1);
}

} // namespace

/// Any bytes as a preferences file: it is read or refused, and setting one value leaves all others as they were.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArrayView file(bytes, static_cast<qsizetype>(size));
    const std::optional<PreferencesDocument> read = PreferencesDocument::fromBytes(file);
    if (!read)
        return 0;
    for (const auto& [key, value] : read->members())
        readAsEachType(*read, key);

    PreferencesDocument changed = *read;
    const QString alert = QStringLiteral("alert");
    changed.assign(alert, "5");
    const std::optional<PreferencesDocument> reread = PreferencesDocument::fromBytes(changed.toBytes());
    require(reread == changed);
    require(reread->integer(alert) == 5);
    for (const auto& member : read->members())
        require(member.first == alert || reread->members().contains(member));
    require(reread->members().size() - read->members().size() <= 1);
    return 0;
}

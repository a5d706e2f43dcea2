#include "Platform/DBusMenu.h"

#include <QDBusVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int rootId = 0;

/// An underscore marks the next letter as the key of the entry; doubled, it stands for itself.
QString menuLabel(QString label) {
    return label.replace(u'_', u"__"_s);
}

QVariantMap entryProperties(const MenuEntry& entry) {
    if (entry.separator)
        return {{u"type"_s, u"separator"_s}};
    return {{u"label"_s, menuLabel(entry.label)}, {u"enabled"_s, entry.enabled}};
}

/// No names asks for all of them.
QVariantMap selected(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty())
        return properties;
    QVariantMap chosen;
    for (const QString& name : names) {
        if (const auto found = properties.constFind(name); found != properties.constEnd())
            chosen.insert(name, *found);
    }
    return chosen;
}

bool haveSameLayout(const QList<MenuEntry>& a, const QList<MenuEntry>& b) {
    return std::equal(a.cbegin(), a.cend(), b.cbegin(), b.cend(), [](const MenuEntry& left, const MenuEntry& right) {
        return left.id == right.id && left.separator == right.separator;
    });
}

} // namespace

DBusMenu::DBusMenu(const QDBusConnection& bus, QObject* parent)
    : QObject(parent)
    , m_object(bus, QString(path), interface()) {
    registerStatusNotifierTypes();
}

bool DBusMenu::publish() {
    return m_object.publish();
}

void DBusMenu::show(const QList<MenuEntry>& entries) {
    if (entries == m_entries)
        return;
    const QList<MenuEntry> before = std::exchange(m_entries, entries);
    if (haveSameLayout(before, m_entries)) {
        sendChangedProperties(before);
        return;
    }
    ++m_revision;
    m_object.send("LayoutUpdated"_L1, {m_revision, rootId});
}

void DBusMenu::sendChangedProperties(const QList<MenuEntry>& before) {
    QList<MenuItemProperties> changed;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i] != before[i])
            changed.append({m_entries[i].id, entryProperties(m_entries[i])});
    }
    m_object.send("ItemsPropertiesUpdated"_L1,
                  {QVariant::fromValue(changed), QVariant::fromValue(QList<MenuItemRemovals>())});
}

DBusInterface DBusMenu::interface() {
    return {
        "com.canonical.dbusmenu"_L1,
        readingMethods() + happeningMethods(),
        {
            {"Version"_L1, "u"_L1, [] { return 3U; }},
            {"TextDirection"_L1, "s"_L1, [] { return u"ltr"_s; }},
            {"Status"_L1, "s"_L1, [] { return u"normal"_s; }},
            {"IconThemePath"_L1, "as"_L1, [] { return QStringList(); }},
        },
        {
            {"ItemsPropertiesUpdated"_L1, {"a(ia{sv})"_L1, "a(ias)"_L1}},
            {"LayoutUpdated"_L1, {"u"_L1, "i"_L1}},
        },
    };
}

QList<DBusMethod> DBusMenu::readingMethods() {
    const auto getLayout = [this](const QVariantList& arguments) -> DBusAnswer {
        const auto found = layout(arguments[0].toInt(), arguments[1].toInt(), arguments[2].toStringList());
        return found ? dbusAnswer(m_revision, *found) : std::nullopt;
    };
    const auto getGroupProperties = [this](const QVariantList& arguments) -> DBusAnswer {
        const auto ids = qdbus_cast<QList<int>>(arguments[0]);
        return dbusAnswer(groupProperties(ids, arguments[1].toStringList()));
    };
    const auto getProperty = [this](const QVariantList& arguments) -> DBusAnswer {
        const QVariant value = properties(arguments[0].toInt()).value(arguments[1].toString());
        return value.isValid() ? dbusAnswer(QDBusVariant(value)) : std::nullopt;
    };
    return {
        {"GetLayout"_L1, {"i"_L1, "i"_L1, "as"_L1}, {"u"_L1, "(ia{sv}av)"_L1}, getLayout},
        {"GetGroupProperties"_L1, {"ai"_L1, "as"_L1}, {"a(ia{sv})"_L1}, getGroupProperties},
        {"GetProperty"_L1, {"i"_L1, "s"_L1}, {"v"_L1}, getProperty},
    };
}

QList<DBusMethod> DBusMenu::happeningMethods() {
    const auto event = [this](const QVariantList& arguments) -> DBusAnswer {
        return happen(arguments[0].toInt(), arguments[1].toString()) ? dbusAnswer() : std::nullopt;
    };
    const auto eventGroup = [this](const QVariantList& arguments) -> DBusAnswer {
        return happen(qdbus_cast<QList<MenuEvent>>(arguments[0]));
    };
    // The entries never change by being shown, so no panel has to ask for them again.
    const auto aboutToShow = [this](const QVariantList& arguments) -> DBusAnswer {
        return isKnown(arguments[0].toInt()) ? dbusAnswer(false) : std::nullopt;
    };
    const auto aboutToShowGroup = [this](const QVariantList& arguments) -> DBusAnswer {
        QList<int> unknown = qdbus_cast<QList<int>>(arguments[0]);
        unknown.removeIf([this](int id) { return isKnown(id); });
        return dbusAnswer(QList<int>(), unknown);
    };
    return {
        {"Event"_L1, {"i"_L1, "s"_L1, "v"_L1, "u"_L1}, {}, event},
        {"EventGroup"_L1, {"a(isvu)"_L1}, {"ai"_L1}, eventGroup},
        {"AboutToShow"_L1, {"i"_L1}, {"b"_L1}, aboutToShow},
        {"AboutToShowGroup"_L1, {"ai"_L1}, {"ai"_L1, "ai"_L1}, aboutToShowGroup},
    };
}

const MenuEntry* DBusMenu::entry(int id) const {
    const auto found =
        std::find_if(m_entries.cbegin(), m_entries.cend(), [id](const MenuEntry& each) { return each.id == id; });
    return found == m_entries.cend() ? nullptr : &*found;
}

bool DBusMenu::isKnown(int id) const {
    return id == rootId || entry(id);
}

/// Empty for an unknown id: every known one has properties.
QVariantMap DBusMenu::properties(int id) const {
    if (id == rootId)
        return {{u"children-display"_s, u"submenu"_s}};
    const MenuEntry* found = entry(id);
    return found ? entryProperties(*found) : QVariantMap();
}

std::optional<MenuLayout> DBusMenu::layout(int parentId, int depth, const QStringList& names) const {
    if (!isKnown(parentId))
        return std::nullopt;
    MenuLayout whole{parentId, selected(properties(parentId), names), {}};
    if (parentId != rootId || depth == 0)
        return whole;
    for (const MenuEntry& each : m_entries)
        whole.children.append(QVariant::fromValue(MenuLayout{each.id, selected(entryProperties(each), names), {}}));
    return whole;
}

/// No ids asks for all entries; unknown ones are left out, and repeated ones come once: an answer is never larger than
/// the menu.
QList<MenuItemProperties> DBusMenu::groupProperties(const QList<int>& ids, const QStringList& names) const {
    QList<int> known{rootId};
    for (const MenuEntry& each : m_entries)
        known.append(each.id);
    QList<MenuItemProperties> group;
    for (const int id : std::as_const(known)) {
        if (ids.isEmpty() || ids.contains(id))
            group.append({id, selected(properties(id), names)});
    }
    return group;
}

/// False when there is no such entry. Kinds other than a click need no action.
bool DBusMenu::happen(int id, QStringView kind) {
    const MenuEntry* found = entry(id);
    if (found && kind == u"clicked" && found->enabled && !found->separator)
        QMetaObject::invokeMethod(
            this, [this, id] { Q_EMIT entryTriggered(id); }, Qt::QueuedConnection);
    return found || id == rootId;
}

/// Gives the unknown ids; it is an error when there are no others.
DBusAnswer DBusMenu::happen(const QList<MenuEvent>& events) {
    QList<int> unknown;
    for (const MenuEvent& each : events) {
        if (!happen(each.id, each.kind))
            unknown.append(each.id);
    }
    const bool allUnknown = !events.isEmpty() && unknown.size() == events.size();
    return allUnknown ? std::nullopt : dbusAnswer(unknown);
}

} // namespace torvane

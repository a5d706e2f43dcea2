#pragma once

#include "Platform/DBusObject.h"
#include "Platform/StatusNotifierTypes.h"

#include <QObject>

namespace torvane {

/// An entry of a flat menu. Ids are the caller's: positive, and unique within the menu. A separator's label is not
/// shown.
struct MenuEntry {
    int id = 0;
    QString label;
    bool enabled = true;
    bool separator = false;

    bool operator==(const MenuEntry&) const = default;
};

/// A menu that the desktop draws, as com.canonical.dbusmenu at /MenuBar.
class DBusMenu final : public QObject {
    Q_OBJECT

public:
    static constexpr QLatin1StringView path{"/MenuBar"};

    explicit DBusMenu(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Makes the menu reachable. False when another object of this connection has its path.
    bool publish();

    /// Exchanges the entries and tells the desktop what changed; equal entries cost no message.
    void show(const QList<MenuEntry>& entries);

Q_SIGNALS:
    /// An enabled entry was chosen. Sent from the event loop, after the caller has its answer.
    void entryTriggered(int id);

private:
    DBusInterface interface();
    QList<DBusMethod> readingMethods();
    QList<DBusMethod> happeningMethods();
    const MenuEntry* entry(int id) const;
    bool isKnown(int id) const;
    QVariantMap properties(int id) const;
    std::optional<MenuLayout> layout(int parentId, int depth, const QStringList& names) const;
    QList<MenuItemProperties> groupProperties(const QList<int>& ids, const QStringList& names) const;
    bool happen(int id, QStringView kind);
    DBusAnswer happen(const QList<MenuEvent>& events);
    void sendChangedProperties(const QList<MenuEntry>& before);

    QList<MenuEntry> m_entries;
    uint m_revision = 1;
    DBusObject m_object;
};

} // namespace torvane

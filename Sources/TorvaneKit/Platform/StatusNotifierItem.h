#pragma once

#include "Platform/DBusMenu.h"

#include <QDBusServiceWatcher>
#include <QImage>
#include <QPoint>
#include <QTimer>

#include <optional>

class QDBusPendingCallWatcher;

namespace torvane {

/// A text that some panels write beside the icon, with the widest text to expect as a guide.
struct NotifierLabel {
    QString text;
    QString guide;

    bool operator==(const NotifierLabel&) const = default;
};

/// Everything a panel shows of an item. Texts are plain; an icon name goes before pixmaps on most panels.
struct NotifierLook {
    QString title;
    QString status = QStringLiteral("Active");
    QString iconName;
    QString iconThemePath;
    QList<QImage> icons;
    QString toolTipTitle;
    QString toolTipText;
    std::optional<NotifierLabel> label;

    bool operator==(const NotifierLook&) const = default;
};

/// An icon in the desktop's panel: org.kde.StatusNotifierItem with a menu. It waits on nobody: the object appears in
/// each panel that comes up while it lives, and without a bus or a panel it is simply not seen. The one call that may
/// wait is the caller's, for the connection.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// The id names the program and stays the same over starts; the category is one of freedesktop.org's, such as
    /// "ApplicationStatus". One item per connection: their object paths are fixed.
    StatusNotifierItem(const QDBusConnection& bus, const QString& id, const QString& category,
                       QObject* parent = nullptr);
    ~StatusNotifierItem() override;

    /// Shows this look and tells the panel which of its values changed; an equal look costs no message.
    void show(const NotifierLook& look);

    void showMenu(const QList<MenuEntry>& entries) { m_menu.show(entries); }

    /// Whether a panel has been told of the item yet: before that, nobody asks how it looks.
    bool isAnnounced() const { return !m_name.isEmpty(); }

    /// Whether the present panel has taken the item in.
    bool isRegistered() const { return m_registered; }

Q_SIGNALS:
    /// Clicks, at the position that the panel states: which is not always the pointer's.
    void activated(QPoint position);
    /// The panel shows no menus of items, and leaves it to the item what a right click does.
    void contextMenuRequested(QPoint position);
    void menuEntryTriggered(int id);
    /// The panel is being told of the item. It will ask how it looks as soon as the loop runs again.
    void announced();
    void registeredChanged(bool registered);

private:
    DBusInterface interface(const QString& id, const QString& category);
    QList<DBusMethod> methods();
    QList<DBusProperty> iconProperties();
    QList<DBusProperty> labelProperties();
    DBusMethod click(QLatin1StringView name, void (StatusNotifierItem::*clicked)(QPoint));
    void requestName();
    void nameAnswered(uint answer);
    void registerWithPanel();
    void panelChanged(const QString& owner);
    void panelAnswered(const QDBusPendingCallWatcher* call);
    void setRegistered(bool registered);

    QDBusConnection m_bus;
    NotifierLook m_look;
    QList<NotifierPixmap> m_pixmaps;
    DBusMenu m_menu;
    DBusObject m_object;
    QDBusServiceWatcher m_panels;
    QString m_candidate;
    QString m_name;
    int m_attempts = 0;
    bool m_registered = false;
    const QDBusPendingCallWatcher* m_registration = nullptr;
    QTimer m_nextTry;
    int m_tries = 0; // With the present panel, beyond the first.
};

} // namespace torvane

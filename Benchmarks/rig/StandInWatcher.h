#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/// What a desktop with a panel is to status items: the watcher's name, a host, and somebody who reads an item when it
/// comes and whenever it says that it has changed, as panels do.
class StandInWatcher final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    explicit StandInWatcher(QDBusConnection connection);

    /// False when the bus did not agree.
    bool appear();

    /// Activates the item that registered last, as a click does.
    void click();

    /// The bus names of the items that have registered.
    const QStringList& items() const { return m_items; }

    bool hasHost() const { return true; }

    int protocolVersion() const { return 0; }

Q_SIGNALS:
    void registered(const QString& item);
    void nameTaken(const QString& name);

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);
    void readAgain(const QDBusMessage& changed);
    void nameChanged(const QString& name, const QString& before, const QString& owner);

private:
    void read(const QString& item);

    QDBusConnection m_connection;
    QStringList m_items;
};

#pragma once

#include "Support/PrivateBus.h"

#include <QDBusContext>
#include <QObject>
#include <QVariant>

/// A panel as a status notifier item sees it: the watcher's name, the registration, and a reader of the item's values
/// and signals. It has a connection of its own, as another process would.
class StandInPanel final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    explicit StandInPanel(PrivateBus& bus);
    ~StandInPanel() override;

    /// Whether registrations are answered; else they are only noted.
    bool answers = true;
    bool refuses = false;

    /// Takes the watcher's name, or gives it back. False when the bus did not agree.
    bool appear();
    bool disappear();

    /// A panel that has not come so far: it owns the name, and nothing is there. Or is there from now on.
    void hideObject();
    void showObject();

    /// Refuses the registrations that were only noted.
    void refuseNoted();

    /// The registered services, in order, each as often as it registered.
    QStringList services() const { return m_services; }

    /// Calls a method of the item that registered last, or of its menu.
    QDBusMessage call(const QString& interface, const QString& method, const QVariantList& arguments = {});

    /// The property's value, or an invalid variant when there is none.
    QVariant property(const QString& name);
    QVariantMap properties();

    /// The names of the signals since the last time, in order, once those sent until now have arrived.
    QStringList signalsSoFar();

    QDBusConnection connection() const { return m_connection; }

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);

    void receive(const QDBusMessage& signal);

private:
    PrivateBus& m_bus;
    QDBusConnection m_connection;
    QStringList m_services;
    QList<QDBusMessage> m_noted;
    QStringList m_signals;
};

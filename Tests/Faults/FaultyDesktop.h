#pragma once

#include "Support/PrivateBus.h"

#include <QDBusVirtualObject>

#include <optional>

/// The panel, the notification service and the settings portal of a desktop, on one connection, that fail at the n-th
/// call that reaches them. While nothing is wrong the desktop's user asks for dark.
class FaultyDesktop final : public QDBusVirtualObject {
public:
    enum class Fault {
        error, ///< the call is answered by an error
        gone,  ///< the services leave the bus without an answer, and come back when told to
    };

    explicit FaultyDesktop(PrivateBus& bus);
    ~FaultyDesktop() override;

    /// From now on calls are counted from 1. 0: none fails.
    void failAt(int call, Fault fault, const QString& error = {});

    /// Takes all names on a connection of its own, unless it has them.
    void comeBack();

    bool isThere() const { return m_connection.has_value(); }
    int calls() const { return m_calls; }
    int registrations() const { return m_registrations; }
    int notifications() const { return m_notifications; }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override;

private:
    QDBusMessage reply(const QDBusMessage& call);
    void leave();

    PrivateBus& m_bus;
    std::optional<QDBusConnection> m_connection;
    int m_failing = 0;
    Fault m_fault = Fault::error;
    QString m_error;
    int m_calls = 0;
    int m_registrations = 0;
    int m_notifications = 0;
};

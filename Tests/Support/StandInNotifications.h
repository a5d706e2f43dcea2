#pragma once

#include "Support/PrivateBus.h"

#include <QDBusVirtualObject>
#include <QVariant>

/// A call of Notify, or of the portal's AddNotification, as it arrived.
struct ReceivedNotification {
    QString signature;
    QVariantList arguments;

    QString text(qsizetype position) const { return arguments.value(position).toString(); }

    /// The dictionary among the arguments: the hints, or all of the portal's notification.
    QVariantMap dictionary(qsizetype position) const;
};

/// The desktop's notification service and the portal in one, on a connection of its own, as another process would be.
class StandInNotifications final : public QDBusVirtualObject {
public:
    static constexpr QLatin1StringView desktop{"org.freedesktop.Notifications"};
    static constexpr QLatin1StringView portal{"org.freedesktop.portal.Desktop"};

    explicit StandInNotifications(PrivateBus& bus);
    ~StandInNotifications() override;

    /// Whether GetCapabilities is answered; else it is only noted.
    bool answers = true;

    /// Whether what is answered is answered with errors.
    bool refuses = false;

    /// What GetCapabilities answers: a list of texts from a service that keeps to the rules.
    QVariantList capabilities{QStringList{QStringLiteral("body")}};

    /// Takes one of the names above, or gives it back. False when the bus did not agree.
    bool appear(const QString& name = desktop);
    bool disappear(const QString& name = desktop);

    /// The names of the methods called, in order.
    QStringList calls() const { return m_calls; }

    QList<ReceivedNotification> notifications() const { return m_notifications; }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusMessage reply(const QDBusMessage& call);

    PrivateBus& m_bus;
    QDBusConnection m_connection;
    QStringList m_calls;
    QList<ReceivedNotification> m_notifications;
    uint m_lastId = 0;
};

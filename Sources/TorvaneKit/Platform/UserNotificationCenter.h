#pragma once

#include <QDBusConnection>
#include <QString>

namespace torvane {

/// Who notifies: the name that users read, and that of the desktop entry, which its icon has too.
struct NotificationSender {
    QString name;
    QString desktopEntry;
};

/// A notification without buttons. Both texts are plain.
struct UserNotification {
    QString title;
    QString body;
    bool sound = false;
};

/// Who takes notifications: the desktop's own service, or the portal, which is all that a sandbox can reach.
enum class NotificationRoute { desktop, portal };

/// The route of this process.
NotificationRoute notificationRoute();

/// The desktop's notifications: org.freedesktop.Notifications, or org.freedesktop.portal.Notification. No call waits
/// for an answer and no failure is reported: without a bus or a service, what is posted is simply not seen. A value
/// that may go at once; what it has begun ends with the main loop.
class UserNotificationCenter final {
public:
    UserNotificationCenter(QDBusConnection bus, NotificationSender sender, NotificationRoute route);

    /// Wakes the desktop's service, where it is started on demand. Everyone may notify: there is nothing to ask for.
    void requestAuthorization() const;

    /// Shows one more notification; none replaces another.
    void post(const UserNotification& notification) const;

private:
    void askThenNotify(const UserNotification& notification) const;
    void notify(const UserNotification& notification, const QString& body) const;
    void addToPortal(const UserNotification& notification) const;

    QDBusConnection m_bus;
    NotificationSender m_sender;
    NotificationRoute m_route;
};

} // namespace torvane

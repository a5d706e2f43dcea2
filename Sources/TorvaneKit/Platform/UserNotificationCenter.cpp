#include "Platform/UserNotificationCenter.h"

#include "Platform/Sandbox.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr uint replacesNothing = 0;
constexpr uchar normalUrgency = 1;
constexpr int asLongAsTheServiceLikes = -1;

QDBusMessage desktopCall(const QString& method) {
    const QString service = u"org.freedesktop.Notifications"_s;
    return QDBusMessage::createMethodCall(service, u"/org/freedesktop/Notifications"_s, service, method);
}

QString escaped(QString text) {
    return text.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
}

/// A service that does not answer, or not as it should, has announced nothing.
bool announcesMarkup(const QDBusPendingCall& capabilities) {
    return QDBusPendingReply<QStringList>(capabilities).value().contains("body-markup"_L1);
}

} // namespace

NotificationRoute notificationRoute() {
    return isSandboxed() ? NotificationRoute::portal : NotificationRoute::desktop;
}

UserNotificationCenter::UserNotificationCenter(QDBusConnection bus, NotificationSender sender, NotificationRoute route)
    : m_bus(std::move(bus))
    , m_sender(std::move(sender))
    , m_route(route) {}

void UserNotificationCenter::requestAuthorization() const {
    if (m_route == NotificationRoute::desktop)
        m_bus.asyncCall(desktopCall(u"GetServerInformation"_s));
}

void UserNotificationCenter::post(const UserNotification& notification) const {
    if (m_route == NotificationRoute::portal)
        addToPortal(notification);
    else
        askThenNotify(notification);
}

/// Asked for each notification: they are rare, and services come and go and are exchanged while a session lasts.
void UserNotificationCenter::askThenNotify(const UserNotification& notification) const {
    if (!m_bus.isConnected())
        return; // Such a call never ends, and its watcher would stay.
    const QDBusPendingCall capabilities = m_bus.asyncCall(desktopCall(u"GetCapabilities"_s));
    auto* watcher = new QDBusPendingCallWatcher(capabilities, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [center = *this, notification, watcher] {
        watcher->deleteLater();
        center.notify(notification, announcesMarkup(*watcher) ? escaped(notification.body) : notification.body);
    });
}

void UserNotificationCenter::notify(const UserNotification& notification, const QString& body) const {
    QVariantMap hints{{u"desktop-entry"_s, m_sender.desktopEntry}, {u"urgency"_s, QVariant::fromValue(normalUrgency)}};
    if (notification.sound)
        hints.insert(u"sound-name"_s, u"message-new-instant"_s);
    else
        hints.insert(u"suppress-sound"_s, true);
    QDBusMessage call = desktopCall(u"Notify"_s);
    call.setArguments({m_sender.name, replacesNothing, m_sender.desktopEntry, notification.title, body, QStringList(),
                       hints, asLongAsTheServiceLikes});
    m_bus.asyncCall(call);
}

/// The portal has no word for sound, takes texts as plain, and would replace a notification of the same name.
void UserNotificationCenter::addToPortal(const UserNotification& notification) const {
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.Notification"_s, u"AddNotification"_s);
    const QVariantMap content{
        {u"title"_s, notification.title}, {u"body"_s, notification.body}, {u"priority"_s, u"normal"_s}};
    call.setArguments({QUuid::createUuid().toString(QUuid::WithoutBraces), content});
    m_bus.asyncCall(call);
}

} // namespace torvane

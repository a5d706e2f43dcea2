#include "Support/StandInNotifications.h"

#include <QDBusArgument>
#include <QDBusError>

using namespace Qt::StringLiterals;

namespace {

/// The two services differ in their paths too: a call that mixes them up is to fail.
bool isTheirs(const QDBusMessage& call) {
    return (call.path() == "/org/freedesktop/Notifications"_L1 &&
            call.interface() == "org.freedesktop.Notifications"_L1) ||
           (call.path() == "/org/freedesktop/portal/desktop"_L1 &&
            call.interface() == "org.freedesktop.portal.Notification"_L1);
}

} // namespace

QVariantMap ReceivedNotification::dictionary(qsizetype position) const {
    return qdbus_cast<QVariantMap>(arguments.value(position));
}

StandInNotifications::StandInNotifications(PrivateBus& bus)
    : m_bus(bus)
    , m_connection(bus.connect()) {
    m_connection.registerVirtualObject(u"/org/freedesktop/Notifications"_s, this);
    m_connection.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this);
}

StandInNotifications::~StandInNotifications() {
    m_bus.close(m_connection);
}

bool StandInNotifications::appear(const QString& name) {
    return m_connection.registerService(name);
}

bool StandInNotifications::disappear(const QString& name) {
    return m_connection.unregisterService(name);
}

QString StandInNotifications::introspect(const QString&) const {
    return {};
}

bool StandInNotifications::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (!isTheirs(message))
        return false;
    m_calls.append(message.member());
    if (message.member() == "Notify"_L1 || message.member() == "AddNotification"_L1)
        m_notifications.append({message.signature(), message.arguments()});
    if (answers || message.member() != "GetCapabilities"_L1)
        connection.send(reply(message));
    return true;
}

QDBusMessage StandInNotifications::reply(const QDBusMessage& call) {
    if (refuses)
        return call.createErrorReply(QDBusError::AccessDenied, u"not here"_s);
    if (call.member() == "GetCapabilities"_L1)
        return call.createReply(capabilities);
    if (call.member() == "Notify"_L1)
        return call.createReply(++m_lastId);
    if (call.member() == "AddNotification"_L1)
        return call.createReply();
    return call.createReply(QVariantList{u"stand-in"_s, u"test"_s, u"1"_s, u"1.2"_s});
}

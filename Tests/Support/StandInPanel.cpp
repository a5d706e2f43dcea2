#include "Support/StandInPanel.h"

#include <QDBusArgument>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace {

constexpr auto watcherName = "org.kde.StatusNotifierWatcher"_L1;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;
constexpr auto menuInterface = "com.canonical.dbusmenu"_L1;
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties"_L1;

} // namespace

StandInPanel::StandInPanel(PrivateBus& bus)
    : m_bus(bus)
    , m_connection(bus.connect()) {
    showObject();
    for (const QLatin1StringView interface : {itemInterface, menuInterface})
        m_connection.connect({}, {}, interface, {}, this, SLOT(receive(QDBusMessage)));
}

StandInPanel::~StandInPanel() {
    m_bus.close(m_connection);
}

bool StandInPanel::appear() {
    return m_connection.registerService(watcherName);
}

bool StandInPanel::disappear() {
    return m_connection.unregisterService(watcherName);
}

void StandInPanel::hideObject() {
    m_connection.unregisterObject(watcherPath);
}

void StandInPanel::showObject() {
    m_connection.registerObject(watcherPath, this, QDBusConnection::ExportScriptableSlots);
}

void StandInPanel::refuseNoted() {
    for (const QDBusMessage& registration : std::exchange(m_noted, {}))
        m_connection.send(registration.createErrorReply(QDBusError::AccessDenied, u"too late"_s));
}

QDBusMessage StandInPanel::call(const QString& interface, const QString& method, const QVariantList& arguments) {
    const QString path = interface == menuInterface ? u"/MenuBar"_s : u"/StatusNotifierItem"_s;
    QDBusMessage message =
        QDBusMessage::createMethodCall(m_services.value(m_services.size() - 1), path, interface, method);
    message.setArguments(arguments);
    return answer(m_connection, message);
}

QVariant StandInPanel::property(const QString& name) {
    const QDBusMessage reply = call(propertiesInterface, u"Get"_s, {QString(itemInterface), name});
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).value<QDBusVariant>().variant()
                                                      : QVariant();
}

QVariantMap StandInPanel::properties() {
    const QDBusMessage reply = call(propertiesInterface, u"GetAll"_s, {QString(itemInterface)});
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

QStringList StandInPanel::signalsSoFar() {
    // The bus keeps a sender's order: what was sent before this answer has arrived with it.
    call(u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    return std::exchange(m_signals, {});
}

void StandInPanel::RegisterStatusNotifierItem(const QString& service) {
    m_services.append(service);
    if (!answers) {
        setDelayedReply(true);
        m_noted.append(message());
    }
    if (refuses)
        sendErrorReply(QDBusError::AccessDenied, u"not here"_s);
}

void StandInPanel::receive(const QDBusMessage& signal) {
    m_signals.append(signal.member());
}

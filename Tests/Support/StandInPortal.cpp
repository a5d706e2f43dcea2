#include "Support/StandInPortal.h"

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

const QString name = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString settings = u"org.freedesktop.portal.Settings"_s;

} // namespace

const QString& StandInPortal::appearanceGroup() {
    static const QString group = u"org.freedesktop.appearance"_s;
    return group;
}

StandInPortal::StandInPortal(PrivateBus& bus)
    : m_bus(bus)
    , m_connection(bus.connect()) {
    m_connection.registerVirtualObject(path, this);
}

StandInPortal::~StandInPortal() {
    m_bus.close(m_connection);
}

bool StandInPortal::appear() {
    return m_connection.registerService(name);
}

bool StandInPortal::disappear() {
    return m_connection.unregisterService(name);
}

void StandInPortal::announce(const QString& group, const QString& key, const QVariant& value) {
    QDBusMessage signal = QDBusMessage::createSignal(path, settings, u"SettingChanged"_s);
    signal.setArguments({group, key, value});
    m_connection.send(signal);
}

void StandInPortal::announce(uint value) {
    announce(appearanceGroup(), u"color-scheme"_s, inVariant(value));
}

void StandInPortal::answerNoted() {
    for (const QDBusMessage& call : std::exchange(m_noted, {}))
        m_connection.send(call.createReply(scheme));
}

QString StandInPortal::introspect(const QString&) const {
    return {};
}

bool StandInPortal::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != settings || message.member() != "Read"_L1)
        return false;
    questions.append(message.arguments());
    if (!answers)
        m_noted.append(message);
    else if (scheme.isValid())
        connection.send(message.createReply(scheme));
    else
        connection.send(message.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s, u"no such key"_s));
    return true;
}

} // namespace torvane

#include "Platform/DBusObject.h"

#include <QDBusError>
#include <QDBusVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties"_L1;
constexpr auto introspectableInterface = "org.freedesktop.DBus.Introspectable"_L1;
constexpr auto peerInterface = "org.freedesktop.DBus.Peer"_L1;

QString signature(const DBusTypes& types) {
    QString all;
    for (const QLatin1StringView type : types)
        all += type;
    return all;
}

QDBusMessage wrongArguments(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::InvalidArgs,
                                 u"%1 does not take (%2)"_s.arg(call.member(), call.signature()));
}

QDBusMessage unknownMethod(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::UnknownMethod,
                                 u"There is no method %1.%2"_s.arg(call.interface(), call.member()));
}

QDBusMessage unknownProperty(const QDBusMessage& call, const QString& name) {
    return call.createErrorReply(QDBusError::UnknownProperty, u"There is no property %1"_s.arg(name));
}

QDBusMessage unknownInterface(const QDBusMessage& call, const QString& name) {
    return call.createErrorReply(QDBusError::UnknownInterface, u"There is no interface %1"_s.arg(name));
}

QString argumentsXml(const DBusTypes& types, QLatin1StringView attributes) {
    QString xml;
    for (const QLatin1StringView type : types)
        xml += u"      <arg type=\"%1\"%2/>\n"_s.arg(type, attributes);
    return xml;
}

QString methodXml(const DBusMethod& method) {
    return u"    <method name=\"%1\">\n%2%3    </method>\n"_s.arg(method.name,
                                                                  argumentsXml(method.takes, " direction=\"in\""_L1),
                                                                  argumentsXml(method.gives, " direction=\"out\""_L1));
}

QString propertyXml(const DBusProperty& property) {
    return u"    <property name=\"%1\" type=\"%2\" access=\"read\"/>\n"_s.arg(property.name, property.type);
}

QString signalXml(const DBusSignal& signal) {
    return u"    <signal name=\"%1\">\n%2    </signal>\n"_s.arg(signal.name, argumentsXml(signal.carries, ""_L1));
}

} // namespace

DBusObject::DBusObject(QDBusConnection bus, QString path, DBusInterface interface)
    : m_bus(std::move(bus))
    , m_path(std::move(path))
    , m_interface(std::move(interface)) {}

DBusObject::~DBusObject() {
    if (m_published)
        m_bus.unregisterObject(m_path);
}

bool DBusObject::publish() {
    m_published = m_published || m_bus.registerVirtualObject(m_path, this);
    return m_published;
}

void DBusObject::send(QLatin1StringView signal, const QVariantList& arguments) {
    if (!m_published)
        return;
    QDBusMessage message = QDBusMessage::createSignal(m_path, m_interface.name, signal);
    message.setArguments(arguments);
    m_bus.send(message);
}

QString DBusObject::introspect(const QString&) const {
    QString xml = u"  <interface name=\"%1\">\n"_s.arg(m_interface.name);
    for (const DBusMethod& method : m_interface.methods)
        xml += methodXml(method);
    for (const DBusProperty& property : m_interface.properties) {
        if (property.read().isValid())
            xml += propertyXml(property);
    }
    for (const DBusSignal& signal : m_interface.signalsSent)
        xml += signalXml(signal);
    return xml + "  </interface>\n"_L1;
}

bool DBusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    // These two are the library's own, but it offers them for calls without an interface too: ours come first there.
    if (message.interface() == introspectableInterface || message.interface() == peerInterface)
        return false;
    if (message.interface().isEmpty() && message.member() == "Introspect"_L1)
        return false;
    const QDBusMessage reply = answer(message);
    if (message.isReplyRequired())
        connection.send(reply);
    return true;
}

QDBusMessage DBusObject::answer(const QDBusMessage& call) const {
    if (call.interface() == propertiesInterface)
        return answerProperties(call);
    if (!call.interface().isEmpty() && call.interface() != m_interface.name)
        return unknownInterface(call, call.interface());
    const auto method = std::find_if(m_interface.methods.cbegin(), m_interface.methods.cend(),
                                     [&](const DBusMethod& each) { return each.name == call.member(); });
    if (method == m_interface.methods.cend())
        return unknownMethod(call);
    if (call.signature() != signature(method->takes))
        return wrongArguments(call);
    const DBusAnswer reply = method->call(call.arguments());
    if (!reply)
        return call.createErrorReply(QDBusError::InvalidArgs, u"%1: no such thing"_s.arg(call.member()));
    return call.createReply(*reply);
}

QDBusMessage DBusObject::answerProperties(const QDBusMessage& call) const {
    if (call.member() == "Get"_L1)
        return propertyValue(call);
    if (call.member() == "GetAll"_L1)
        return allProperties(call);
    if (call.member() == "Set"_L1)
        return refuseToSet(call);
    return unknownMethod(call);
}

QDBusMessage DBusObject::propertyValue(const QDBusMessage& call) const {
    if (call.signature() != "ss"_L1)
        return wrongArguments(call);
    const QString interface = call.arguments().at(0).toString();
    const QString name = call.arguments().at(1).toString();
    if (!interface.isEmpty() && interface != m_interface.name)
        return unknownInterface(call, interface);
    const DBusProperty* found = property(name);
    if (!found)
        return unknownProperty(call, name);
    return call.createReply(QVariant::fromValue(QDBusVariant(found->read())));
}

QDBusMessage DBusObject::allProperties(const QDBusMessage& call) const {
    if (call.signature() != "s"_L1)
        return wrongArguments(call);
    const QString interface = call.arguments().at(0).toString();
    if (!interface.isEmpty() && interface != m_interface.name)
        return unknownInterface(call, interface);
    QVariantMap values;
    for (const DBusProperty& each : m_interface.properties) {
        if (const QVariant value = each.read(); value.isValid())
            values.insert(each.name, value);
    }
    return call.createReply(QVariant(values));
}

QDBusMessage DBusObject::refuseToSet(const QDBusMessage& call) const {
    if (call.signature() != "ssv"_L1)
        return wrongArguments(call);
    const QString interface = call.arguments().at(0).toString();
    const QString name = call.arguments().at(1).toString();
    if (!interface.isEmpty() && interface != m_interface.name)
        return unknownInterface(call, interface);
    if (!property(name))
        return unknownProperty(call, name);
    return call.createErrorReply(QDBusError::PropertyReadOnly, u"The property %1 cannot be set"_s.arg(name));
}

const DBusProperty* DBusObject::property(QStringView name) const {
    for (const DBusProperty& each : m_interface.properties) {
        if (each.name == name && each.read().isValid())
            return &each;
    }
    return nullptr;
}

} // namespace torvane

#include "Platform/ApplicationInstance.h"

#include "Platform/InstanceSocket.h"
#include "Support/Later.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto applicationInterface = "org.freedesktop.Application"_L1;

/// As the Desktop Entry specification names them.
const QString activationToken = u"activation-token"_s;
const QString startupId = u"desktop-startup-id"_s;

/// As in the D-Bus specification, "org.freedesktop.DBus.RequestName".
constexpr uint waitInQueue = 0;
constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;
constexpr uint alreadyOwner = 4;

/// A bus that takes longer is not one to wait for.
constexpr int busLimitMs = 2000;
/// An instance that takes longer hangs.
constexpr int ownerLimitMs = 5000;

/// What a desktop hands to a launch so that its window may come to the front.
QVariantMap platformData() {
    QVariantMap data;
    if (const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !token.isEmpty())
        data.insert(activationToken, token);
    if (const QString startup = qEnvironmentVariable("DESKTOP_STARTUP_ID"); !startup.isEmpty())
        data.insert(startupId, startup);
    return data;
}

/// Of a launch that handed these over.
QString tokenOf(const QVariantMap& platformData) {
    const QString token = platformData.value(activationToken).toString();
    return token.isEmpty() ? platformData.value(startupId).toString() : token;
}

/// A call of the bus itself.
QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                       u"org.freedesktop.DBus"_s, method);
    call.setArguments(arguments);
    return call;
}

/// Until the call is answered, or is given up.
Task<> ended(QDBusPendingCall call) {
    const Later<bool> hasEnded;
    const QDBusPendingCallWatcher watcher(call);
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &watcher, [hasEnded] { hasEnded.set(true); });
    co_await hasEnded;
}

} // namespace

ApplicationInstance::ApplicationInstance(QDBusConnection bus, QString id, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_id(std::move(id))
    , m_object(m_bus, objectPath(m_id), interface()) {}

ApplicationInstance::~ApplicationInstance() = default;

QString ApplicationInstance::objectPath(QString id) {
    return u'/' + id.replace(u'.', u'/').replace(u'-', u'_');
}

DBusInterface ApplicationInstance::interface() {
    const auto activate = [this](const QVariantList& arguments) {
        Q_EMIT activated(tokenOf(qdbus_cast<QVariantMap>(arguments.last())));
        return dbusAnswer();
    };
    // It opens no files and has no actions, but whoever calls these wants to see it.
    return {applicationInterface,
            {{"Activate"_L1, {"a{sv}"_L1}, {}, activate},
             {"Open"_L1, {"as"_L1, "a{sv}"_L1}, {}, activate},
             {"ActivateAction"_L1, {"s"_L1, "av"_L1, "a{sv}"_L1}, {}, activate}},
            {},
            {}};
}

void ApplicationInstance::settle() {
    if (!m_bus.isConnected()) {
        settleBySocket();
        return;
    }
    m_object.publish(); // Before the name: the call that the bus started us for follows right after it.
    requestName();
}

QDBusPendingCall ApplicationInstance::askForName(uint flags) const {
    return m_bus.asyncCall(busCall(u"RequestName"_s, {m_id, flags}), busLimitMs);
}

void ApplicationInstance::requestName() {
    auto* watcher = new QDBusPendingCallWatcher(askForName(doNotQueue), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        nameRequested(*watcher);
    });
}

void ApplicationInstance::nameRequested(const QDBusPendingCallWatcher& reply) {
    const QDBusPendingReply<uint> answer(reply);
    // A bus that refuses the name or does not answer cannot tell of another instance either.
    if (answer.isError() || answer.value() == primaryOwner || answer.value() == alreadyOwner)
        Q_EMIT becameFirst();
    else
        activateOwner();
}

void ApplicationInstance::activateOwner() {
    QDBusMessage call = QDBusMessage::createMethodCall(m_id, objectPath(m_id), applicationInterface, u"Activate"_s);
    call.setArguments({platformData()});
    call.setAutoStartService(false); // Were the owner gone by now, we would be the one to start.
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, ownerLimitMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        ownerAnswered(*watcher);
    });
}

void ApplicationInstance::ownerAnswered(const QDBusPendingCallWatcher& reply) {
    const bool isGone = reply.isError() && (reply.error().type() == QDBusError::ServiceUnknown ||
                                            reply.error().name() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1);
    if (isGone && !std::exchange(m_askedAgain, true))
        requestName();
    else
        Q_EMIT deferred(!reply.isError());
}

Task<> ApplicationInstance::release() {
    if (!m_bus.isConnected()) {
        delete std::exchange(m_socket, nullptr);
        co_return;
    }
    Task<> releasing = ended(m_bus.asyncCall(busCall(u"ReleaseName"_s, {m_id}), busLimitMs));
    co_await releasing;
}

Task<> ApplicationInstance::takeAgain() {
    if (!m_bus.isConnected()) {
        holdSocket();
        m_socket->bindWhenFree();
        co_return;
    }
    // The bus may not know yet that one that was ended is gone.
    Task<> asking = ended(askForName(waitInQueue));
    co_await asking;
}

void ApplicationInstance::holdSocket() {
    m_socket = new InstanceSocket(m_id, this);
    connect(m_socket, &InstanceSocket::called, this, [this] { Q_EMIT activated({}); });
}

void ApplicationInstance::settleBySocket() {
    holdSocket();
    connect(m_socket, &InstanceSocket::bound, this, &ApplicationInstance::becameFirst);
    connect(m_socket, &InstanceSocket::deferred, this, &ApplicationInstance::deferred);
    m_socket->settle();
}

} // namespace torvane

#include "FaultyDesktop.h"

#include <QDBusVariant>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array services{"org.kde.StatusNotifierWatcher"_L1, "org.freedesktop.Notifications"_L1,
                              "org.freedesktop.portal.Desktop"_L1};
constexpr uint dark = 1;

} // namespace

FaultyDesktop::FaultyDesktop(PrivateBus& bus)
    : m_bus(bus) {
    comeBack();
}

FaultyDesktop::~FaultyDesktop() {
    leave();
}

void FaultyDesktop::failAt(int call, Fault fault, const QString& error) {
    m_failing = call;
    m_fault = fault;
    m_error = error;
    m_calls = m_registrations = m_notifications = 0;
}

void FaultyDesktop::comeBack() {
    if (m_connection)
        return;
    m_connection = m_bus.connect();
    bool isThere = m_connection->registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
    for (const QLatin1StringView service : services)
        isThere = m_connection->registerService(service) && isThere;
    if (!isThere)
        qFatal("The desktop cannot be had on the test's bus");
}

void FaultyDesktop::leave() {
    if (!m_connection)
        return;
    m_bus.close(*m_connection);
    m_connection.reset();
}

bool FaultyDesktop::handleMessage(const QDBusMessage& call, const QDBusConnection& connection) {
    const bool isFailing = ++m_calls == m_failing;
    if (isFailing && m_fault == Fault::gone) {
        // Queued: a connection is not to be closed from within what it delivers.
        QMetaObject::invokeMethod(
            this, [this] { leave(); }, Qt::QueuedConnection);
        return true;
    }
    connection.send(isFailing ? call.createErrorReply(m_error, u"The test says so"_s) : reply(call));
    return true;
}

QDBusMessage FaultyDesktop::reply(const QDBusMessage& call) {
    if (call.member() == "RegisterStatusNotifierItem"_L1) {
        ++m_registrations;
        return call.createReply();
    }
    if (call.member() == "Read"_L1)
        return call.createReply(QVariant::fromValue(QDBusVariant(dark)));
    if (call.member() == "GetCapabilities"_L1)
        return call.createReply(QStringList{u"body-markup"_s});
    if (call.member() != "Notify"_L1)
        return call.createReply();
    ++m_notifications;
    return call.createReply(1U);
}

#include "rig/StandInWatcher.h"

#include <QDBusPendingCall>

using namespace Qt::StringLiterals;

namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;
constexpr auto itemPath = "/StatusNotifierItem"_L1;
constexpr auto busService = "org.freedesktop.DBus"_L1;

} // namespace

StandInWatcher::StandInWatcher(QDBusConnection connection)
    : m_connection(std::move(connection)) {
    m_connection.registerObject(u"/StatusNotifierWatcher"_s, this,
                                QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAllProperties);
    m_connection.connect({}, {}, itemInterface, {}, this, SLOT(readAgain(QDBusMessage)));
}

bool StandInWatcher::appear() {
    m_connection.connect(busService, u"/org/freedesktop/DBus"_s, busService, u"NameOwnerChanged"_s, this,
                         SLOT(nameChanged(QString, QString, QString)));
    return m_connection.registerService(u"org.kde.StatusNotifierWatcher"_s);
}

void StandInWatcher::click() {
    QDBusMessage call = QDBusMessage::createMethodCall(m_items.constLast(), itemPath, itemInterface, u"Activate"_s);
    call.setArguments({0, 0});
    m_connection.asyncCall(call);
}

void StandInWatcher::nameChanged(const QString& name, const QString& before, const QString&) {
    if (before.isEmpty())
        Q_EMIT nameTaken(name);
}

void StandInWatcher::RegisterStatusNotifierItem(const QString&) {
    Q_EMIT registered(message().service());
    m_items.append(message().service());
    read(message().service());
}

void StandInWatcher::readAgain(const QDBusMessage& changed) {
    read(changed.service());
}

void StandInWatcher::read(const QString& item) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(item, itemPath, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s);
    call.setArguments({QString(itemInterface)});
    m_connection.asyncCall(call);
}

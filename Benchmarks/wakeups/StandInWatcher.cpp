#include "StandInWatcher.h"

#include <QDBusPendingCall>

using namespace Qt::StringLiterals;

namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;

} // namespace

StandInWatcher::StandInWatcher(QDBusConnection connection)
    : m_connection(std::move(connection)) {
    m_connection.registerObject(u"/StatusNotifierWatcher"_s, this,
                                QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAllProperties);
    m_connection.connect({}, {}, itemInterface, {}, this, SLOT(readAgain(QDBusMessage)));
}

bool StandInWatcher::appear() {
    return m_connection.registerService(u"org.kde.StatusNotifierWatcher"_s);
}

void StandInWatcher::RegisterStatusNotifierItem(const QString&) {
    m_items.append(message().service());
    read(message().service());
}

void StandInWatcher::readAgain(const QDBusMessage& changed) {
    read(changed.service());
}

void StandInWatcher::read(const QString& item) {
    QDBusMessage call = QDBusMessage::createMethodCall(item, u"/StatusNotifierItem"_s,
                                                       u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s);
    call.setArguments({QString(itemInterface)});
    m_connection.asyncCall(call);
}

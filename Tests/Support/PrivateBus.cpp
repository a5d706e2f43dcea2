#include "Support/PrivateBus.h"

#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QFile>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

constexpr auto configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="%1"/>
  </policy>
</busconfig>
)"_L1;

} // namespace

PrivateBus::PrivateBus(const QString& allowedName) {
    QFile file(m_folder.filePath(u"bus.conf"_s));
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(QString(configuration).arg(allowedName).toUtf8());
    file.close();
    m_daemon.setProcessChannelMode(QProcess::SeparateChannels);
    m_daemon.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s, u"--config-file"_s, file.fileName()});
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(-1)) {
    }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    for (const QString& name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    m_daemon.kill();
    m_daemon.waitForFinished(-1);
}

QDBusConnection PrivateBus::connect() {
    const QString name = QUuid::createUuid().toString();
    m_connections.append(name);
    return QDBusConnection::connectToBus(m_address, name);
}

void PrivateBus::close(const QDBusConnection& connection) {
    m_connections.removeOne(connection.name());
    QDBusConnection::disconnectFromBus(connection.name());
}

QDBusMessage answer(const QDBusConnection& caller, const QDBusMessage& call) {
    const QDBusPendingCallWatcher watcher(caller.asyncCall(call));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    loop.exec(); // Also for an answer that is there already: what came before it is still to be delivered.
    return watcher.reply();
}

QString errorName(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ErrorMessage ? answer.errorName() : QString();
}

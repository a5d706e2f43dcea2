#pragma once

#include "Platform/DBusObject.h"
#include "Support/Async.h"

#include <QObject>

#include <optional>

class QDBusPendingCall;
class QDBusPendingCallWatcher;

namespace torvane {

class InstanceSocket;

/// One instance per session, by the D-Bus activation of the freedesktop Desktop Entry specification: who owns the
/// application's name is the first, and is told by the others to come forward. In a session without a bus a socket does
/// the same. No call waits; a bus or a first instance that does not answer is given up after some seconds.
class ApplicationInstance final : public QObject {
    Q_OBJECT

public:
    /// `id` is the application's: its name on the bus, and with slashes for dots its object there.
    ApplicationInstance(QDBusConnection bus, QString id, QObject* parent = nullptr);
    ~ApplicationInstance() override;

    /// Finds out which one this is: of `becameFirst` and `deferred` one follows.
    void settle();

    /// Gives up its place in the session: whoever is launched next is the first.
    Task<> release();

    /// Takes the place again; where somebody has it at this moment, when that one goes, or soon after.
    Task<> takeAgain();

    /// Where the application of this name has its object on the bus.
    static QString objectPath(QString id);

Q_SIGNALS:
    void becameFirst();

    /// There is another one. `answered` tells whether it heard of this launch.
    void deferred(bool answered);

    /// Somebody launched the application once more, or asked the bus for it. The token is the launcher's leave to come
    /// to the front; empty where there is none.
    void activated(const QString& token);

private:
    DBusInterface interface();
    QDBusPendingCall askForName(uint flags) const;
    void requestName();
    void nameRequested(const QDBusPendingCallWatcher& reply);
    void activateOwner();
    void ownerAnswered(const QDBusPendingCallWatcher& reply);
    void settleBySocket();
    void holdSocket();

    QDBusConnection m_bus;
    const QString m_id;
    DBusObject m_object;
    InstanceSocket* m_socket = nullptr; // A child.
    bool m_askedAgain = false;
};

} // namespace torvane

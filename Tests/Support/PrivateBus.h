#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QTemporaryDir>

/// A message bus of its own for a test: nothing on it is started by itself, and nobody else is there.
class PrivateBus final {
public:
    /// The names that its clients may own: all of them, or a single one, as a sandbox grants.
    explicit PrivateBus(const QString& allowedName = QStringLiteral("*"));
    ~PrivateBus();

    /// A further connection, closed with the bus. Not connected when the daemon did not start.
    QDBusConnection connect();

    void close(const QDBusConnection& connection);

    /// Where to connect, for a process that is to take this bus for its session's.
    QString address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

/// The answer to a call: the loop runs meanwhile, so that the callee may live in this thread.
QDBusMessage answer(const QDBusConnection& caller, const QDBusMessage& call);

/// An error's name, or empty for a reply.
QString errorName(const QDBusMessage& answer);

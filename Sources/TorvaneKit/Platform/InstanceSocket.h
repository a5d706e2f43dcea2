#pragma once

#include "Support/FileDescriptor.h"

#include <QObject>

#include <chrono>
#include <sys/types.h>

namespace torvane {

/// One instance per user and display where there is no bus: whoever binds the socket first is called by the others. Its
/// name lies in the kernel (unix(7), abstract sockets), so that no folder is needed and nothing is left behind.
class InstanceSocket final : public QObject {
    Q_OBJECT

public:
    explicit InstanceSocket(const QString& id, QObject* parent = nullptr);

    /// Of `bound` and `deferred` one follows, from the loop.
    void settle();

    /// Binds as soon as nobody else holds the socket, now or later, and calls nobody. `bound` follows then.
    void bindWhenFree();

    /// Whether this process is the one that is called. It does not hear of being looked at.
    static bool isHeldBy(pid_t process, const QString& id);

Q_SIGNALS:
    void bound();

    /// Another one holds the socket. `answered` tells whether it took our call.
    void deferred(bool answered);

    /// Another launch called. Nobody but this user can.
    void called();

private:
    int bindError();
    void bindOrCall();
    void listen();
    void accept();
    void call();
    void awaitAnswer();

    const QByteArray m_name;
    FileDescriptor m_descriptor{-1};
    std::chrono::seconds m_pause{1}; // Before it is tried again to bind.
};

} // namespace torvane

#pragma once

#include "Support/FileDescriptor.h"

#include <QObject>

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

    /// Whether this process is the one that is called. It does not hear of being looked at.
    static bool isHeldBy(pid_t process, const QString& id);

Q_SIGNALS:
    void bound();

    /// Another one holds the socket. `answered` tells whether it took our call.
    void deferred(bool answered);

    /// Another launch called. Nobody but this user can.
    void called();

private:
    void bindOrCall();
    void listen();
    void accept();
    void call();
    void awaitAnswer();

    const QByteArray m_name;
    FileDescriptor m_descriptor{-1};
};

} // namespace torvane

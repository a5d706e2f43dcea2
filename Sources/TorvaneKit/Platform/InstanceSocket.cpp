#include "Platform/InstanceSocket.h"

#include <QFile>
#include <QMetaObject>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace torvane {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds answerLimit = 5s;
constexpr char heard = 1;
constexpr std::chrono::seconds longestPause = 1min;

/// The name's length counts: the kernel's names are bytes, zero ones included.
struct Address {
    sockaddr_un address{};
    socklen_t size = 0;
};

Address address(const QByteArray& name) {
    Address result;
    result.address.sun_family = AF_UNIX;
    // The first byte stays zero: such a name lies in no file system.
    const auto length =
        std::min<std::size_t>(static_cast<std::size_t>(name.size()), sizeof result.address.sun_path - 1);
    std::memcpy(result.address.sun_path + 1, name.constData(), length);
    result.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    return result;
}

FileDescriptor newSocket() {
    return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// Anyone on the machine may bind or call a name of the kernel's.
bool isOurs(int descriptor) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

QByteArray nameFor(const QString& id) {
    QByteArray display = qgetenv("WAYLAND_DISPLAY");
    if (display.isEmpty())
        display = qgetenv("DISPLAY");
    return id.toUtf8() + '/' + QByteArray::fromStdString(std::to_string(geteuid())) + '/' + display;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number of the socket that listens under this name, in the kernel's table of them (proc(5)): its name stands last
/// in a line, an "@" for the zero byte, and before it the number. Empty where nobody listens.
QByteArray listenerOf(const QByteArray& name) {
    constexpr int flagsColumn = 3;
    constexpr int numberColumn = 6;
    const QList<QByteArray> lines = contentOf(QStringLiteral("/proc/net/unix")).split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> columns = line.simplified().split(' ');
        const bool isListening = columns.value(flagsColumn) == "00010000"; // __SO_ACCEPTCON
        if (isListening && line.endsWith(" @" + name))
            return columns.value(numberColumn);
    }
    return {};
}

} // namespace

bool InstanceSocket::isHeldBy(pid_t process, const QString& id) {
    const QByteArray listener = listenerOf(nameFor(id));
    const QByteArray wanted = "socket:[" + listener + ']';
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const bool isIt = !listener.isEmpty() && std::filesystem::read_symlink(entry, error) == wanted.constData();
        if (isIt)
            return true;
    }
    return false;
}

InstanceSocket::InstanceSocket(const QString& id, QObject* parent)
    : QObject(parent)
    , m_name(nameFor(id)) {}

void InstanceSocket::settle() {
    QMetaObject::invokeMethod(this, &InstanceSocket::bindOrCall, Qt::QueuedConnection);
}

/// Zero where it is bound.
int InstanceSocket::bindError() {
    m_descriptor = newSocket();
    const Address own = address(m_name);
    const auto* generic = reinterpret_cast<const sockaddr*>(&own.address);
    return bind(m_descriptor.get(), generic, own.size) == 0 ? 0 : errno;
}

void InstanceSocket::bindOrCall() {
    const int error = bindError();
    if (error == 0)
        listen();
    else if (error == EADDRINUSE)
        call();
    else
        Q_EMIT bound(); // Without a socket nobody can call, which is no reason not to run.
}

/// The kernel tells nobody of a name that is free again, so that it is asked, ever less often.
void InstanceSocket::bindWhenFree() {
    const int error = bindError();
    if (error == 0) {
        listen();
    } else if (error == EADDRINUSE) {
        QTimer::singleShot(m_pause, Qt::CoarseTimer, this, &InstanceSocket::bindWhenFree);
        m_pause = std::min(2 * m_pause, longestPause);
    } else {
        Q_EMIT bound(); // As above.
    }
}

void InstanceSocket::listen() {
    constexpr int waitingCalls = 8;
    if (::listen(m_descriptor.get(), waitingCalls) == 0) {
        auto* notifier = new QSocketNotifier(m_descriptor.get(), QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, &InstanceSocket::accept);
    }
    Q_EMIT bound();
}

void InstanceSocket::accept() {
    const FileDescriptor caller(accept4(m_descriptor.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!caller.isOpen() || !isOurs(caller.get()))
        return;
    // A caller that has gone meanwhile wants the same as one that waits.
    [[maybe_unused]] const ssize_t sent = send(caller.get(), &heard, sizeof heard, MSG_NOSIGNAL);
    Q_EMIT called();
}

void InstanceSocket::call() {
    m_descriptor = newSocket();
    const Address other = address(m_name);
    const bool connected =
        ::connect(m_descriptor.get(), reinterpret_cast<const sockaddr*>(&other.address), other.size) == 0;
    if (connected && !isOurs(m_descriptor.get()))
        Q_EMIT bound(); // Another user took our name: that is not us.
    else if (connected)
        awaitAnswer();
    else
        Q_EMIT deferred(false);
}

void InstanceSocket::awaitAnswer() {
    auto* notifier = new QSocketNotifier(m_descriptor.get(), QSocketNotifier::Read, this);
    auto* limit = new QTimer(this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier, limit] {
        notifier->setEnabled(false);
        limit->stop();
        char byte = 0;
        Q_EMIT deferred(read(m_descriptor.get(), &byte, sizeof byte) == sizeof byte);
    });
    connect(limit, &QTimer::timeout, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT deferred(false);
    });
    limit->setSingleShot(true);
    limit->start(answerLimit);
}

} // namespace torvane

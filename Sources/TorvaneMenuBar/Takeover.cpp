#include "Takeover.h"

#include "Platform/ApplicationInstance.h"
#include "Platform/InstanceSocket.h"
#include "Support/Worker.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds lookInterval = 200ms;

/// The first may be answered just before it hears that it has the place, and begins in earnest.
constexpr int questions = 2;

/// What was meant for the launch of this program alone.
constexpr std::array<std::string_view, 8> once{
    "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID", "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE",
    "LISTEN_FDS",           "LISTEN_FDNAMES",     "LISTEN_PID",           "NOTIFY_SOCKET"};

/// The rest of the session's environment, byte for byte: not all of it has to be text.
QList<QByteArray> environment() {
    QList<QByteArray> list;
    for (char** each = ::environ; *each; ++each) {
        const std::string_view assignment(*each);
        if (std::ranges::find(once, assignment.substr(0, assignment.find('='))) == once.end())
            list.append(QByteArray(*each));
    }
    return list;
}

} // namespace

Takeover::Takeover(QDBusConnection bus, QString id, std::chrono::milliseconds limit)
    : m_bus(std::move(bus))
    , m_id(std::move(id))
    , m_place(m_id, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&m_place, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { ownerChanged(owner); });
    connect(&m_limit, &QTimer::timeout, this, [this] { decide(false); });
    connect(&m_nextLook, &QTimer::timeout, this, &Takeover::lookForSocket);
    m_limit.setSingleShot(true);
    m_limit.setInterval(limit);
}

Takeover::~Takeover() {
    if (!m_program || m_isThere)
        return;
    m_program->kill();
    worker().start([program = m_program] { program->reap(); }); // The kernel may take a moment to end it.
}

void Takeover::start(const QString& executable) {
    const QByteArray file = QFile::encodeName(executable);
    m_program = std::make_shared<ChildProcess>(Command{file, {file}, environment()});
    auto* ending = new QSocketNotifier(m_program->ending(), QSocketNotifier::Read, this);
    connect(ending, &QSocketNotifier::activated, this, [this, ending] {
        ending->setEnabled(false);
        decide(false);
        m_ended.set(true);
    });
    m_limit.start();
    if (!m_bus.isConnected())
        m_nextLook.start(lookInterval);
}

Task<> Takeover::end() {
    if (!m_program || m_isThere)
        co_return;
    m_program->kill();
    co_await m_ended;
}

void Takeover::ownerChanged(const QString& owner) {
    if (owner.isEmpty())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                       u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s);
    call.setArguments({owner});
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, owner] {
        watcher->deleteLater();
        ownerKnown(*watcher, owner);
    });
}

void Takeover::ownerKnown(const QDBusPendingCallWatcher& reply, const QString& owner) {
    const QDBusPendingReply<uint> process(reply);
    if (!process.isError() && m_program && static_cast<pid_t>(process.value()) == m_program->id())
        ask(owner, questions);
}

/// It has the place; that it answers there as well says that it has come all the way up. Asked is what its main thread
/// answers: with an error, since nothing is to be done. That comes from itself, and not from the bus or from a clock.
void Takeover::ask(const QString& owner, int times) {
    const QDBusMessage call = QDBusMessage::createMethodCall(owner, ApplicationInstance::objectPath(m_id),
                                                             u"org.freedesktop.Application"_s, u"ActivateAction"_s);
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, m_limit.interval()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, owner, times] {
        watcher->deleteLater();
        if (watcher->reply().service() != owner)
            return;
        if (times > 1)
            ask(owner, times - 1);
        else
            decide(true);
    });
}

void Takeover::lookForSocket() {
    if (m_program && InstanceSocket::isHeldBy(m_program->id(), m_id))
        decide(true);
}

void Takeover::decide(bool isThere) {
    if (std::exchange(m_isDecided, true))
        return;
    m_limit.stop();
    m_nextLook.stop();
    m_isThere = isThere;
    m_outcome.set(isThere);
}

} // namespace torvane

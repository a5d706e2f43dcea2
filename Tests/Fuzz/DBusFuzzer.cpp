#include "Platform/ApplicationPalette.h"
#include "Platform/ColorScheme.h"
#include "Platform/StatusNotifierItem.h"
#include "Platform/UserNotificationCenter.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServer>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QGuiApplication>

#include <cstdint>
#include <cstdlib>
#include <optional>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// The input, read byte by byte; zeros behind its end.
class Tape final {
public:
    Tape(const std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_end(data + size) {}

    bool isAtEnd() const { return m_data == m_end; }
    unsigned byte() { return isAtEnd() ? 0 : *m_data++; }
    int number() { return static_cast<int>(byte()) - 8; }

    QString text() {
        static const QStringList known{u""_s,      u"dark"_s,    u"org.freedesktop.appearance"_s,
                                       u"label"_s, u"clicked"_s, u"color-scheme"_s,
                                       u"Title"_s, u"\u00e9"_s,  u"org.kde.StatusNotifierItem"_s,
                                       u"Menu"_s,  u"hovered"_s, u"org.kde.StatusNotifierWatcher"_s};
        return known.value(static_cast<qsizetype>(byte() % 16), QString(300, u'x'));
    }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
};

QVariant value(Tape& tape, int depth = 0);

QVariantList list(Tape& tape, int depth) {
    QVariantList values;
    for (unsigned i = tape.byte() % 5; i > 0; --i)
        values.append(value(tape, depth + 1));
    return values;
}

/// A value with values in it.
QVariant nested(Tape& tape, int depth) {
    switch (tape.byte() % 5) {
    case 0:
        return QVariant::fromValue(QDBusVariant(value(tape, depth + 1)));
    case 1:
        return list(tape, depth);
    case 2:
        return QVariantMap{{tape.text(), value(tape, depth + 1)}};
    case 3:
        return QVariant::fromValue(QList<MenuEvent>{{tape.number(), tape.text(), value(tape, depth + 1), 0}});
    default:
        return QVariant::fromValue(
            MenuLayout{tape.number(), {{tape.text(), value(tape, depth + 1)}}, list(tape, depth)});
    }
}

/// Any type that QtDBus can send, near misses of those that are expected among them.
QVariant value(Tape& tape, int depth) {
    switch (tape.byte() % 14) {
    case 0:
        return static_cast<uint>(tape.byte());
    case 1:
        return tape.text();
    case 2:
        return tape.number();
    case 3:
        return tape.byte() % 2 == 1;
    case 4:
        return QStringList{tape.text(), tape.text()};
    case 5:
        return QVariant::fromValue(QList<int>{tape.number(), tape.number()});
    case 6:
        return QByteArray(tape.number() + 8, 'b');
    case 7:
        return static_cast<qulonglong>(tape.byte()) << 56;
    case 8:
        return tape.number() / 3.0;
    case 9:
        return QVariant::fromValue(QDBusObjectPath("/a"_L1));
    default:
        return depth < 6 ? nested(tape, depth) : QVariant(0);
    }
}

QVariantList arguments(Tape& tape) {
    return list(tape, 0);
}

/// The other end of the bus. Whatever it is asked, it answers with what the tape says.
class Stranger final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
        if (!tape || !call.isReplyRequired())
            return true;
        connection.send(tape->byte() % 8 == 7 ? call.createErrorReply(u"org.example.No"_s, tape->text())
                                              : call.createReply(arguments(*tape)));
        return true;
    }

    std::optional<Tape> tape;
};

/// Two ends of one connection without a bus between them, in one process.
class World final {
public:
    World() {
        QObject::connect(&m_server, &QDBusServer::newConnection, &m_server, [this](const QDBusConnection& connection) {
            m_theirs = connection;
            insist(m_theirs->registerVirtualObject(u"/"_s, &m_stranger, QDBusConnection::SubPath));
        });
        m_ours = QDBusConnection::connectToPeer(m_server.address(), u"ours"_s);
        while (!m_theirs)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        registerStatusNotifierTypes();
    }

    void play(const Tape& tape);

private:
    QDBusMessage signal(Tape& tape) const;
    QDBusMessage call(Tape& tape) const;
    void settle();

    int m_argumentCount = 1;
    std::array<char, 5> m_name{"fuzz"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    QGuiApplication m_application{m_argumentCount, m_arguments.data()};
    QDBusServer m_server{u"unix:tmpdir=/tmp"_s};
    Stranger m_stranger;
    std::optional<QDBusConnection> m_theirs;
    QDBusConnection m_ours{u"none"_s};
    ApplicationPalette m_palette;
};

QDBusMessage World::signal(Tape& tape) const {
    QDBusMessage message =
        tape.byte() % 4 > 0
            ? QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s,
                                         u"SettingChanged"_s)
            : QDBusMessage::createSignal(u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"NameOwnerChanged"_s);
    QVariantList values = arguments(tape);
    if (tape.byte() % 2 == 0) // With the group and the key that are listened for.
        values = QVariantList{u"org.freedesktop.appearance"_s, u"color-scheme"_s} + values;
    message.setArguments(values);
    return message;
}

/// Mostly with the arguments that the method takes, so that it is reached.
QDBusMessage World::call(Tape& tape) const {
    static const QStringList members{u"GetLayout"_s,
                                     u"GetGroupProperties"_s,
                                     u"GetProperty"_s,
                                     u"Event"_s,
                                     u"EventGroup"_s,
                                     u"AboutToShow"_s,
                                     u"AboutToShowGroup"_s,
                                     u"Activate"_s,
                                     u"ContextMenu"_s,
                                     u"Scroll"_s,
                                     u"Get"_s,
                                     u"GetAll"_s,
                                     u"Set"_s,
                                     u"Introspect"_s,
                                     u"Ping"_s};
    static const QStringList interfaces{{},
                                        u"com.canonical.dbusmenu"_s,
                                        u"org.kde.StatusNotifierItem"_s,
                                        u"org.freedesktop.DBus.Properties"_s,
                                        u"org.freedesktop.DBus.Introspectable"_s};
    const QString path = tape.byte() % 2 == 0 ? u"/MenuBar"_s : u"/StatusNotifierItem"_s;
    const QString interface = interfaces.value(static_cast<qsizetype>(tape.byte() % 5));
    const QString member = members.value(static_cast<qsizetype>(tape.byte() % 15));
    QDBusMessage message = QDBusMessage::createMethodCall({}, path, interface, member);
    message.setArguments(arguments(tape));
    return message;
}

/// What was said in either direction before has been heard: messages keep their order.
void World::settle() {
    for (const QDBusConnection& from : {*m_theirs, m_ours, *m_theirs, m_ours}) {
        const QDBusPendingCallWatcher ping(
            from.asyncCall(QDBusMessage::createMethodCall({}, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s)));
        QEventLoop loop;
        QObject::connect(&ping, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void World::play(const Tape& tape) {
    m_stranger.tape = tape;
    ColorScheme scheme(m_ours, m_palette);
    StatusNotifierItem item(m_ours, u"fuzz"_s, u"Communications"_s);
    item.showMenu({{1, u"Refresh Now"_s}, {2, {}, true, true}, {3, u"Never"_s, false}});
    QObject::connect(&item, &StatusNotifierItem::menuEntryTriggered, &item, [](int id) { insist(id == 1); });
    const UserNotificationCenter center(m_ours, {u"fuzz"_s, u"fuzz"_s}, NotificationRoute::desktop);
    center.requestAuthorization();
    center.post({u"title"_s, u"<body>"_s});
    settle();
    QList<QDBusPendingCall> calls;
    for (int i = 0; i < 16 && !m_stranger.tape->isAtEnd(); ++i) {
        if (m_stranger.tape->byte() % 2 == 0)
            m_theirs->send(signal(*m_stranger.tape));
        else
            calls.append(m_theirs->asyncCall(call(*m_stranger.tape)));
    }
    settle();
    insist(m_ours.isConnected() && m_theirs->isConnected());
    for (const QDBusPendingCall& each : calls)
        insist(each.isFinished()); // Whatever is asked, it is answered at once.
    const ColorPreference preference = scheme.preference();
    insist(preference == ColorPreference::none || scheme.isDark() == (preference == ColorPreference::dark));
    insist(static_cast<uint>(preference) <= 2);
    m_stranger.tape.reset();
}

} // namespace

/// Answers, signals and calls of any types from the other end of the bus: nothing is hurt, and every call is answered.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static World world;
    world.play({data, size});
    return 0;
}

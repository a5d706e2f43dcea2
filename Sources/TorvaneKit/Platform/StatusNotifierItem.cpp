#include "Platform/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <chrono>
#include <limits>
#include <string>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto itemPath = "/StatusNotifierItem"_L1;
constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;
constexpr auto panelService = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto busService = "org.freedesktop.DBus"_L1;

constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;
constexpr uint alreadyOwner = 4;
constexpr int mostAttempts = 16;

/// Each pause is twice the one before it, so that the last try comes after a quarter of a minute.
constexpr int mostTriesMore = 4;
constexpr std::chrono::seconds firstPause{1};

/// An answer may come late from a busy panel, but asking again would not bring it sooner: no time-out, no timer.
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage busCall(QLatin1StringView method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s, busService, method);
    call.setArguments(arguments);
    return call;
}

/// Names carry a number since a process may have several items.
QString nextName() {
    static quint64 number = 0;
    return u"org.kde.StatusNotifierItem-%1-%2"_s.arg(
        QLatin1StringView(std::to_string(QCoreApplication::applicationPid())),
        QLatin1StringView(std::to_string(++number)));
}

/// Several panels read the tooltip as markup, none of them shows an escape as such.
QString escaped(QString text) {
    return text.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s);
}

/// Errors that say no more than that nobody is there.
bool meansNobodyIsThere(const QDBusError& error) {
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
    case QDBusError::NoReply:
        return true;
    default:
        return error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1;
    }
}

/// A panel may own its name before its object is there; nobody tells when it is.
bool meansNotYetThere(const QDBusError& error) {
    switch (error.type()) {
    case QDBusError::UnknownObject:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownMethod:
        return true;
    default:
        return false;
    }
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, const QString& id, const QString& category,
                                       QObject* parent)
    : QObject(parent)
    , m_bus(bus)
    , m_menu(bus)
    , m_object(bus, QString(itemPath), interface(id, category)) {
    registerStatusNotifierTypes();
    connect(&m_menu, &DBusMenu::entryTriggered, this, &StatusNotifierItem::menuEntryTriggered);
    if (!m_bus.isConnected())
        return;
    if (!m_object.publish() || !m_menu.publish()) {
        qWarning("The panel item stays invisible: the connection has one already");
        return;
    }
    m_panels.setConnection(m_bus);
    m_panels.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_panels, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) { panelChanged(newOwner); });
    m_nextTry.setSingleShot(true);
    connect(&m_nextTry, &QTimer::timeout, this, &StatusNotifierItem::registerWithPanel);
    m_panels.addWatchedService(panelService);
    requestName();
}

StatusNotifierItem::~StatusNotifierItem() {
    // Panels drop an item when its name goes, and the process may live on.
    if (!m_candidate.isEmpty())
        m_bus.send(busCall("ReleaseName"_L1, {m_candidate}));
}

void StatusNotifierItem::show(const NotifierLook& look) {
    if (look == m_look)
        return;
    const NotifierLook before = std::exchange(m_look, look);
    if (look.icons != before.icons)
        m_pixmaps = notifierPixmaps(look.icons);
    if (look.title != before.title)
        m_object.send("NewTitle"_L1);
    if (look.iconThemePath != before.iconThemePath)
        m_object.send("NewIconThemePath"_L1, {look.iconThemePath});
    if (look.iconName != before.iconName || look.icons != before.icons)
        m_object.send("NewIcon"_L1);
    if (look.toolTipTitle != before.toolTipTitle || look.toolTipText != before.toolTipText)
        m_object.send("NewToolTip"_L1);
    if (look.status != before.status)
        m_object.send("NewStatus"_L1, {look.status});
    if (look.label != before.label) {
        const NotifierLabel label = look.label.value_or(NotifierLabel());
        m_object.send("XAyatanaNewLabel"_L1, {label.text, label.guide});
    }
}

DBusInterface StatusNotifierItem::interface(const QString& id, const QString& category) {
    const QList<DBusProperty> texts{
        {"Category"_L1, "s"_L1, [category] { return category; }},
        {"Id"_L1, "s"_L1, [id] { return id; }},
        {"Title"_L1, "s"_L1, [this] { return m_look.title; }},
        {"Status"_L1, "s"_L1, [this] { return m_look.status; }},
        {"WindowId"_L1, "i"_L1, [] { return 0; }},
        {"ItemIsMenu"_L1, "b"_L1, [] { return false; }},
        {"Menu"_L1, "o"_L1, [] { return QVariant::fromValue(QDBusObjectPath(DBusMenu::path)); }},
    };
    return {
        itemInterface,
        methods(),
        texts + iconProperties() + labelProperties(),
        {
            {"NewTitle"_L1, {}},
            {"NewIcon"_L1, {}},
            {"NewIconThemePath"_L1, {"s"_L1}},
            {"NewToolTip"_L1, {}},
            {"NewStatus"_L1, {"s"_L1}},
            {"XAyatanaNewLabel"_L1, {"s"_L1, "s"_L1}},
        },
    };
}

QList<DBusProperty> StatusNotifierItem::iconProperties() {
    const auto noText = [] { return QString(); };
    const auto noPixmaps = [] { return QVariant::fromValue(QList<NotifierPixmap>()); };
    const auto toolTip = [this] {
        return QVariant::fromValue(NotifierToolTip{{}, {}, escaped(m_look.toolTipTitle), escaped(m_look.toolTipText)});
    };
    // An overlay would replace the icon on some panels, and attention is never asked for: both stay empty.
    return {
        {"IconName"_L1, "s"_L1, [this] { return m_look.iconName; }},
        {"IconThemePath"_L1, "s"_L1, [this] { return m_look.iconThemePath; }},
        {"IconPixmap"_L1, "a(iiay)"_L1, [this] { return QVariant::fromValue(m_pixmaps); }},
        {"OverlayIconName"_L1, "s"_L1, noText},
        {"OverlayIconPixmap"_L1, "a(iiay)"_L1, noPixmaps},
        {"AttentionIconName"_L1, "s"_L1, noText},
        {"AttentionIconPixmap"_L1, "a(iiay)"_L1, noPixmaps},
        {"AttentionMovieName"_L1, "s"_L1, noText},
        {"ToolTip"_L1, "(sa(iiay)ss)"_L1, toolTip},
    };
}

QList<DBusProperty> StatusNotifierItem::labelProperties() {
    // Absent, not empty, without a label: a panel on GTK hides the icon behind even an empty one.
    const auto part = [this](QString NotifierLabel::*text) {
        return [this, text] { return m_look.label ? QVariant((*m_look.label).*text) : QVariant(); };
    };
    return {
        {"XAyatanaLabel"_L1, "s"_L1, part(&NotifierLabel::text)},
        {"XAyatanaLabelGuide"_L1, "s"_L1, part(&NotifierLabel::guide)},
    };
}

QList<DBusMethod> StatusNotifierItem::methods() {
    const auto ignore = [](const QVariantList&) { return dbusAnswer(); };
    return {
        click("Activate"_L1, &StatusNotifierItem::activated),
        click("ContextMenu"_L1, &StatusNotifierItem::contextMenuRequested),
        {"SecondaryActivate"_L1, {"i"_L1, "i"_L1}, {}, ignore},
        {"Scroll"_L1, {"i"_L1, "s"_L1}, {}, ignore},
    };
}

DBusMethod StatusNotifierItem::click(QLatin1StringView name, void (StatusNotifierItem::*clicked)(QPoint)) {
    const auto call = [this, clicked](const QVariantList& arguments) {
        const QPoint position(arguments[0].toInt(), arguments[1].toInt());
        // Queued, so that the panel has its answer before windows open or the item goes.
        QMetaObject::invokeMethod(
            this,
            [this, clicked, position] {
                Q_EMIT(this->*clicked)
                (position);
            },
            Qt::QueuedConnection);
        return dbusAnswer();
    };
    return {name, {"i"_L1, "i"_L1}, {}, call};
}

void StatusNotifierItem::requestName() {
    ++m_attempts;
    m_candidate = nextName();
    const QDBusMessage call = busCall("RequestName"_L1, {m_candidate, doNotQueue});
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, noTimeout), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        if (!reply.isError() || reply.error().type() != QDBusError::Disconnected)
            nameAnswered(reply.isError() ? 0 : reply.value());
    });
}

void StatusNotifierItem::nameAnswered(uint answer) {
    const bool owned = answer == primaryOwner || answer == alreadyOwner;
    // Processes of different containers can have the same number on one bus.
    if (!owned && answer != 0 && m_attempts < mostAttempts) {
        requestName();
        return;
    }
    // A sandbox may forbid the name; the connection's own one serves as well while the process lives.
    m_name = owned ? m_candidate : m_bus.baseService();
    registerWithPanel();
}

void StatusNotifierItem::registerWithPanel() {
    if (m_name.isEmpty())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(panelService, u"/StatusNotifierWatcher"_s, panelService,
                                                       u"RegisterStatusNotifierItem"_s);
    call.setArguments({m_name});
    call.setAutoStartService(false); // A desktop without a panel is not to get one from us.
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, noTimeout), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        panelAnswered(watcher);
    });
    m_registration = watcher;
    Q_EMIT announced();
}

void StatusNotifierItem::panelChanged(const QString& owner) {
    m_registration = nullptr;
    m_nextTry.stop();
    m_tries = 0;
    setRegistered(false);
    if (!owner.isEmpty())
        registerWithPanel();
}

void StatusNotifierItem::panelAnswered(const QDBusPendingCallWatcher* call) {
    if (call != m_registration)
        return; // A panel that has gone in the meantime.
    if (call->isError() && meansNotYetThere(call->error()) && m_tries < mostTriesMore) {
        m_nextTry.start(firstPause * (1 << m_tries++));
        return;
    }
    if (call->isError() && !meansNobodyIsThere(call->error()))
        qWarning("The panel refused the item: %s", qUtf8Printable(call->error().message()));
    setRegistered(!call->isError());
}

void StatusNotifierItem::setRegistered(bool registered) {
    if (m_registered == registered)
        return;
    m_registered = registered;
    Q_EMIT registeredChanged(registered);
}

} // namespace torvane

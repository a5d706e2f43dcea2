#include "Badge/BadgeHost.h"

#include "Badge/LabelBadge.h"
#include "Badge/SquareBadge.h"
#include "Badge/SymbolicBadge.h"
#include "Badge/TrayWindowBadge.h"
#include "Badge/WideBadge.h"
#include "Platform/X11Properties.h"

#include <QCursor>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto panelService = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto panelPath = "/StatusNotifierWatcher"_L1;
constexpr auto busService = "org.freedesktop.DBus"_L1;

/// A panel brings its tray and its notifier items up one after the other.
constexpr int settlingMs = 1000;

/// Answers from the loop, with an invalid reply when there was an error.
template <class Value, class Receiver>
void answerFrom(const QDBusPendingCall& call, QObject* context, Receiver receiver) {
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, receiver] {
        watcher->deleteLater();
        receiver(QDBusPendingReply<Value>(*watcher));
    });
}

/// Asks the bus itself.
template <class Value, class Receiver>
void askBus(const QDBusConnection& bus, QLatin1StringView method, const QString& argument, QObject* context,
            Receiver receiver) {
    QDBusMessage call = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s, busService, method);
    call.setArguments({argument});
    answerFrom<Value>(bus.asyncCall(call), context, receiver);
}

} // namespace

BadgeHost::BadgeHost(const QDBusConnection& bus, ProcessLookup lookup)
    : m_bus(bus)
    , m_lookup(lookup) {
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingMs);
    connect(&m_settling, &QTimer::timeout, this, &BadgeHost::choose);
    connect(&m_tray, &SystemTray::managerChanged, this, &BadgeHost::trayChanged);
    connect(&m_tray, &SystemTray::lookChanged, this, &BadgeHost::draw);
    unsettle();
    if (!m_bus.isConnected())
        return;
    m_panels.setConnection(m_bus);
    m_panels.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_panels, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { panelChanged(owner); });
    m_panels.addWatchedService(panelService);
    // By path, not by the service's name: for a name Qt asks for the owner, and waits.
    for (const char* name : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        m_bus.connect(QString(), panelPath, panelService, QLatin1StringView(name), this, SLOT(askForHost()));
    askBus<QString>(m_bus, "GetNameOwner"_L1, panelService, this, [this](const QDBusPendingReply<QString>& reply) {
        if (reply.isValid() && m_owner.isEmpty())
            panelChanged(reply.value());
    });
}

void BadgeHost::show(const BadgeLook& look) {
    if (look == m_look)
        return;
    m_look = look;
    choose(); // Without a figure another surface may do.
    draw();
}

void BadgeHost::setPreference(std::optional<Appearance> preference) {
    if (preference == m_preference)
        return;
    m_preference = preference;
    draw();
}

void BadgeHost::panelChanged(const QString& owner) {
    m_owner = owner;
    m_panel.reset();
    replaceSurface(SurfaceKind::none);
    unsettle();
    if (owner.isEmpty())
        choose();
    else
        askForProcess();
}

void BadgeHost::askForProcess() {
    const auto received = [this, asked = m_owner](const QDBusPendingReply<uint>& reply) {
        if (asked != m_owner)
            return; // A panel that has gone in the meantime.
        processKnown(reply.isValid() ? m_lookup(reply.value()) : PanelProcess());
    };
    askBus<uint>(m_bus, "GetConnectionUnixProcessID"_L1, m_owner, this, received);
}

void BadgeHost::processKnown(const PanelProcess& process) {
    m_panel = panelKind(process);
    m_hasHost = true;
    if (m_panel == PanelKind::plasma)
        askForHost();
    choose();
}

/// Only Plasma's service is there without anybody to show its items; others need not be asked.
void BadgeHost::askForHost() {
    if (m_panel != PanelKind::plasma)
        return;
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_owner, QString(panelPath), u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setArguments({QString(panelService), u"IsStatusNotifierHostRegistered"_s});
    const auto received = [this, asked = m_owner](const QDBusPendingReply<QDBusVariant>& reply) {
        if (asked != m_owner || !m_panel)
            return;
        m_hasHost = !reply.isValid() || reply.value().variant() != QVariant(false);
        choose();
    };
    answerFrom<QDBusVariant>(m_bus.asyncCall(call), this, received);
}

void BadgeHost::unsettle() {
    m_settling.start();
}

void BadgeHost::trayChanged() {
    if (m_kind == SurfaceKind::trayWindow)
        replaceSurface(SurfaceKind::none); // Its window was the earlier tray's.
    unsettle();
    choose();
    draw();
}

void BadgeHost::choose() {
    if (!m_owner.isEmpty() && !m_panel)
        return; // Which panel it is will be known in a moment.
    const SurfaceKind kind =
        surfaceKind({m_panel, m_tray.isPresent(), m_look.picture.wantsFigure, m_hasHost, !m_settling.isActive()});
    if (kind != m_kind)
        replaceSurface(kind);
}

std::unique_ptr<BadgeSurface> BadgeHost::createSurface(SurfaceKind kind) const {
    switch (kind) {
    case SurfaceKind::none:
        return nullptr;
    case SurfaceKind::label:
        return std::make_unique<LabelBadge>(m_bus);
    case SurfaceKind::wide:
        return std::make_unique<WideBadge>(m_bus);
    case SurfaceKind::symbolic:
        return std::make_unique<SymbolicBadge>(m_bus);
    case SurfaceKind::square:
        return std::make_unique<SquareBadge>(m_bus);
    case SurfaceKind::trayWindow:
        return std::make_unique<TrayWindowBadge>(m_tray);
    }
    Q_UNREACHABLE();
}

void BadgeHost::replaceSurface(SurfaceKind kind) {
    if (kind == SurfaceKind::none && !m_surface)
        return;
    m_kind = kind;
    m_surface.reset(); // Before there is another: a connection has one item.
    m_surface = createSurface(kind);
    if (m_surface) {
        connect(m_surface.get(), &BadgeSurface::clicked, this,
                [this](QPoint position) { Q_EMIT clicked(placeOf(position)); });
        connect(m_surface.get(), &BadgeSurface::appeared, this, &BadgeHost::appeared);
        connect(m_surface.get(), &BadgeSurface::clickedAt, this, &BadgeHost::clicked);
        connect(m_surface.get(), &BadgeSurface::commandChosen, this, &BadgeHost::commandChosen);
        draw();
    }
    Q_EMIT surfaceChanged();
}

BadgeInk BadgeHost::ink() const {
    if (m_tray.foreground())
        return {*m_tray.foreground(), std::nullopt};
    if (m_preference)
        return {Palette::ink.in(*m_preference), std::nullopt};
    return {Palette::ink.in(Appearance::dark), Palette::surface.in(Appearance::dark)};
}

void BadgeHost::draw() {
    if (m_surface)
        m_surface->show(m_look, ink());
}

/// On X11 the pointer is still where the badge was clicked, whatever the panel says.
QRect BadgeHost::placeOf(QPoint stated) const {
    if (X11::knowsThePointer())
        return {QCursor::pos(), QSize(1, 1)};
    const bool isRight = m_panel == PanelKind::plasma || m_panel == PanelKind::swaybar;
    return isRight ? QRect(stated, QSize(1, 1)) : QRect();
}

} // namespace torvane

#include "Platform/SystemTray.h"

#include <QGuiApplication>

#include <cstdlib>
#include <string>

namespace torvane {

using XCB::atom;
using XCB::owned;

namespace {

/// The longest property read: twelve numbers of a tray's colours.
constexpr quint32 mostNumbers = 12;

constexpr quint32 requestDock = 0;
constexpr quint32 verticalOrientation = 1;

quint8 eventKind(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f; // The highest bit says that another client sent it.
}

const xcb_screen_t* screenOfNumber(xcb_connection_t* connection, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.data;
}

/// The number in DISPLAY, as in ":0.1". Qt draws on that screen.
int screenNumber() {
    int number = 0;
    char* host = nullptr;
    int display = 0;
    if (xcb_parse_display(nullptr, &host, &display, &number))
        std::free(host);
    return number;
}

int depthOf(const xcb_screen_t& screen, xcb_visualid_t visual) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == visual)
                return depths.data->depth;
        }
    }
    return 0;
}

} // namespace

SystemTray::SystemTray(QObject* parent)
    : QObject(parent) {
    m_connection = XCB::connection();
    if (!m_connection)
        return;
    const int number = screenNumber();
    m_screen = screenOfNumber(m_connection, number);
    m_selection = atom(std::string("_NET_SYSTEM_TRAY_S" + std::to_string(number)));
    m_managerMessage = atom("MANAGER");
    m_colors = atom("_NET_SYSTEM_TRAY_COLORS");
    m_orientation = atom("_NET_SYSTEM_TRAY_ORIENTATION");
    // A tray that comes up says so to the root window; Qt itself listens there for more, which has to stay.
    const auto root = owned(xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, m_screen->root), nullptr));
    const quint32 events = (root ? root->your_event_mask : 0) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_EVENT_MASK, &events);
    qGuiApp->installNativeEventFilter(this);
    findManager();
}

SystemTray::~SystemTray() = default;

/// Its end is watched before it is taken for the owner: one that goes in between is found gone.
void SystemTray::findManager() {
    const auto owner = [this] {
        const auto reply = owned(
            xcb_get_selection_owner_reply(m_connection, xcb_get_selection_owner(m_connection, m_selection), nullptr));
        return reply ? reply->owner : xcb_window_t(XCB_NONE);
    };
    xcb_window_t found = owner();
    for (xcb_window_t before = XCB_NONE; found != before;) {
        before = found;
        const quint32 events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        if (found != XCB_NONE)
            xcb_change_window_attributes(m_connection, found, XCB_CW_EVENT_MASK, &events);
        found = owner();
    }
    if (found == m_manager)
        return;
    m_manager = found;
    readLook();
    Q_EMIT managerChanged();
}

QList<quint32> SystemTray::managerProperty(xcb_atom_t name, xcb_atom_t type) const {
    if (m_manager == XCB_NONE)
        return {};
    const auto cookie = xcb_get_property(m_connection, 0, m_manager, name, type, 0, mostNumbers);
    const auto reply = owned(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

void SystemTray::readLook() {
    // Four colours of three parts each, the foreground first; a part has 16 bits.
    const QList<quint32> colors = managerProperty(m_colors, XCB_ATOM_CARDINAL);
    std::optional<QColor> foreground;
    if (colors.size() >= 3)
        foreground = QColor(static_cast<int>(colors[0] >> 8 & 0xff), static_cast<int>(colors[1] >> 8 & 0xff),
                            static_cast<int>(colors[2] >> 8 & 0xff));
    const bool isVertical = managerProperty(m_orientation, XCB_ATOM_CARDINAL).value(0) == verticalOrientation;
    if (foreground == m_foreground && isVertical == m_isVertical)
        return;
    m_foreground = foreground;
    m_isVertical = isVertical;
    Q_EMIT lookChanged();
}

std::optional<xcb_visualid_t> SystemTray::translucentVisual() const {
    const xcb_visualid_t visual =
        managerProperty(atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID).value(0, XCB_NONE);
    return depthOf(*m_screen, visual) == 32 ? std::optional(visual) : std::nullopt;
}

void SystemTray::dock(xcb_window_t window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_manager;
    message.type = atom("_NET_SYSTEM_TRAY_OPCODE");
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = requestDock;
    message.data.data32[2] = window;
    xcb_send_event(m_connection, 0, m_manager, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection);
}

bool SystemTray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if (eventKind(event) == XCB_CLIENT_MESSAGE) {
        const auto& client = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (client.type == m_managerMessage && client.data.data32[1] == m_selection)
            findManager();
    } else if (eventKind(event) == XCB_DESTROY_NOTIFY) {
        if (m_manager != XCB_NONE && reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == m_manager)
            findManager();
    } else if (eventKind(event) == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == m_manager && (change.atom == m_colors || change.atom == m_orientation))
            readLook();
    }
    return false;
}

} // namespace torvane

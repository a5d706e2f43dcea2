#include "startup/FrameWatch.h"

#include "rig/Program.h"

#include <cstdlib>
#include <poll.h>

namespace {

constexpr int longestWaitMs = 60000;

/// A popover is at least this wide; tooltips and the windows of selections are not.
constexpr int smallestWidth = 300;

/// Without the bit that says that another client sent it.
int kindOf(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}

} // namespace

FrameWatch::FrameWatch(const char* display)
    : m_connection(xcb_connect(display, nullptr), &xcb_disconnect) {
    xcb_connection_t* x = m_connection.get();
    if (xcb_connection_has_error(x))
        giveUp("The X server does not answer");
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &events);
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(x, &xcb_damage_id);
    if (!extension || !extension->present)
        giveUp("The X server does not tell what is drawn");
    m_damageEvent = extension->first_event + XCB_DAMAGE_NOTIFY;
    std::free(xcb_damage_query_version_reply(x, xcb_damage_query_version(x, 1, 1), nullptr));
    xcb_damage_create(x, xcb_generate_id(x), root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(x);
}

FrameWatch::Event FrameWatch::next() {
    xcb_connection_t* x = m_connection.get();
    xcb_generic_event_t* event = nullptr;
    while (!(event = xcb_poll_for_event(x))) {
        pollfd ready{xcb_get_file_descriptor(x), POLLIN, 0};
        if (poll(&ready, 1, longestWaitMs) <= 0)
            giveUp("No window comes up, or one does not go");
    }
    return {event, &std::free};
}

void FrameWatch::take(const xcb_map_notify_event_t& mapped) {
    xcb_connection_t* x = m_connection.get();
    xcb_get_geometry_reply_t* size = xcb_get_geometry_reply(x, xcb_get_geometry(x, mapped.window), nullptr);
    if (size && size->width >= smallestWidth) {
        m_shown.mapped = now();
        m_window = mapped.window;
        m_undrawn = size->width * size->height / 2;
    }
    std::free(size);
}

void FrameWatch::take(const xcb_damage_notify_event_t& damaged) {
    m_undrawn -= damaged.area.width * damaged.area.height;
    if (m_undrawn <= 0)
        m_shown.drawn = now();
}

FrameWatch::Shown FrameWatch::awaitWindow() {
    m_window = XCB_WINDOW_NONE;
    m_shown = {};
    while (!m_shown.drawn) {
        const Event event = next();
        if (!m_window && kindOf(*event) == XCB_MAP_NOTIFY)
            take(reinterpret_cast<const xcb_map_notify_event_t&>(*event));
        else if (m_window && kindOf(*event) == m_damageEvent)
            take(reinterpret_cast<const xcb_damage_notify_event_t&>(*event));
    }
    return m_shown;
}

void FrameWatch::awaitEnd() {
    while (true) {
        const Event event = next();
        if (kindOf(*event) == XCB_UNMAP_NOTIFY &&
            reinterpret_cast<const xcb_unmap_notify_event_t&>(*event).window == m_window)
            return;
    }
}

#pragma once

#include "rig/Moment.h"

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <memory>
#include <optional>

/// Watches an X display for windows that come up, from outside of their programs.
class FrameWatch final {
public:
    /// When a window was mapped, and when half of it had been drawn since.
    struct Shown {
        Nanoseconds mapped = 0;
        Nanoseconds drawn = 0;
    };

    /// The display as in ":1".
    explicit FrameWatch(const char* display);

    /// Waits for a window of a popover's size to come up and to be drawn; gives up after a minute.
    Shown awaitWindow();

    /// Waits for that window to go.
    void awaitEnd();

private:
    using Event = std::unique_ptr<xcb_generic_event_t, void (*)(void*)>;

    Event next();
    void take(const xcb_map_notify_event_t& mapped);
    void take(const xcb_damage_notify_event_t& damaged);

    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> m_connection;
    int m_damageEvent = 0;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    int m_undrawn = 0; // Pixels until half of it is drawn.
    Shown m_shown;
};

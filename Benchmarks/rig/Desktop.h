#pragma once

#include "rig/Moment.h"
#include "rig/Program.h"

#include <filesystem>
#include <memory>
#include <optional>

/// A desktop for the programs that are measured: an X server, a session bus with nothing on it but a panel, a home, and
/// the relay and the nodes that the demo asks.
class Desktop final {
public:
    /// What the panel saw.
    struct PanelNews {
        std::string
            what; ///< "name": somebody took this name on the bus. "item": it registered. "click": a call went out.
        Nanoseconds time = 0;
        std::string who;
    };

    Desktop();
    ~Desktop();

    const Program::Words& environment() const { return m_environment; }

    /// Where its DISPLAY is, as in ":1".
    const std::string& display() const { return m_display; }

    std::filesystem::path config() const { return m_home / "config/velisk"; }
    std::filesystem::path cache() const { return m_home / "cache/velisk"; }

    /// Starts the panel and the servers, or ends both: for who reads memory, they are other processes with Qt.
    void populate();
    void depopulate();

    /// What the panel saw next. Waits for it; gives up after a minute.
    PanelNews nextNews();

    /// Clicks on the item that registered last. Gives the time of the call.
    Nanoseconds click();

private:
    std::filesystem::path m_home;
    std::unique_ptr<Program> m_screen;
    std::unique_ptr<Program> m_bus;
    std::unique_ptr<Program> m_panel;
    std::unique_ptr<Program> m_servers;
    std::string m_display;
    Program::Words m_environment;
};

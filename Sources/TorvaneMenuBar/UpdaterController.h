#pragma once

#include "TorvaneUpdates/Updater.h"
#include "UpdateWindows.h"

namespace torvane {

/// The standard controller of software updates: the updater, and the windows in which people follow it.
class UpdaterController final {
public:
    /// Starts the updater at once. What is handed over by reference must outlive the controller.
    UpdaterController(Updates::Properties properties, UserDefaults& defaults, Updates::Download& download,
                      Updates::Relaunch relaunch)
        : m_updater(std::move(properties), defaults, download, m_windows, std::move(relaunch)) {
        m_updater.start();
    }

    Updates::Updater& updater() { return m_updater; }

    /// Shows progress and result in windows of its own.
    void checkForUpdates() { m_updater.checkForUpdates(); }

private:
    UpdateWindows m_windows;
    Updates::Updater m_updater;
};

} // namespace torvane

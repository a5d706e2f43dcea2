#include "SparkleUpdater.h"

#include <utility>

namespace torvane {

SparkleUpdater::SparkleUpdater(Updates::Properties properties, UserDefaults& defaults, Updates::Download& download,
                               Updates::Relaunch relaunch)
    : m_controller(std::move(properties), defaults, download, std::move(relaunch)) {
    Updates::Updater& updater = m_controller.updater();
    m_state.automaticChecks = updater.automaticallyChecksForUpdates();
    m_state.onCheck = [this] {
        Q_EMIT aboutToCheck();
        m_controller.checkForUpdates();
    };
    m_state.onSetAutomatic = [&updater](bool automatic) { updater.setAutomaticallyChecksForUpdates(automatic); };
    updater.canCheckForUpdates.observe(this, [this](bool canCheck) { deliverCanCheck(canCheck); });
    deliverCanCheck(updater.canCheckForUpdates);
    connect(&updater, &Updates::Updater::replaced, this, &SparkleUpdater::replaced);
}

/// By the main loop: observers are told before the updater itself has changed, and may call it.
void SparkleUpdater::deliverCanCheck(bool canCheck) {
    QMetaObject::invokeMethod(
        this, [this, canCheck] { m_state.canCheck = canCheck; }, Qt::QueuedConnection);
}

} // namespace torvane

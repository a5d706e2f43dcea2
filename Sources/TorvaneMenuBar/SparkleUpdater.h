#pragma once

#include "Coordination/UpdaterState.h"
#include "UpdaterController.h"

#include <QObject>

namespace torvane {

/// The bridge between the update framework and what the windows know of it, UpdaterState. Main thread only.
class SparkleUpdater final : public QObject {
    Q_OBJECT

public:
    /// Starts the updater. What is handed over by reference must outlive it.
    SparkleUpdater(Updates::Properties properties, UserDefaults& defaults, Updates::Download& download,
                   Updates::Relaunch relaunch);

    /// For the preferences. Its `canCheck` is false until the main loop runs.
    UpdaterState& state() { return m_state; }

    /// A time of day may have passed unnoticed (sleep): an overdue check is made soon.
    void catchUp() { m_controller.updater().catchUp(); }

    /// The network is another one: a check by itself that could not reach its server is made once more.
    void tryAgain() { m_controller.updater().tryAgain(); }

Q_SIGNALS:
    /// Somebody asked for a check by hand, whose windows are about to come to the front.
    void aboutToCheck();

    /// A newer version runs in this one's place: this program must end.
    void replaced();

private:
    void deliverCanCheck(bool canCheck);

    UpdaterState m_state;
    UpdaterController m_controller;
};

} // namespace torvane

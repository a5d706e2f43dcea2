#pragma once

#include "Options.h"
#include "Relay.h"
#include "SnapshotServer.h"

#include <QDateTime>
#include <QTimer>

#include <chrono>

namespace torvane {

/// A relay for one person's own machine: a run every few minutes, and its document over HTTPS.
class LocalService final {
public:
    /// Serves at once what is there from earlier, and starts the first run. Throws CertificateFailure or ListenFailure.
    LocalService(const RelayTable& table, const Options& options, const Relay::Say& say);

    /// Starts a run that is due by the time of day: a machine that sleeps holds up timers. A clock that is set back
    /// holds up nothing, since the timers count the next run too.
    void catchUp();

private:
    void serveEarlier(const QString& document);
    void waitForNext(std::chrono::milliseconds wait);
    Task<> run();

    Relay m_relay;
    SnapshotServer m_server;
    std::chrono::milliseconds m_betweenRuns;
    QTimer m_timer;
    QDateTime m_due; // When the timer is to fire.
    QTimer m_watch;
    TaskScope m_runs;
};

} // namespace torvane

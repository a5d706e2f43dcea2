#pragma once

#include "Options.h"
#include "Relay.h"
#include "SnapshotServer.h"

#include <QTimer>

#include <chrono>

namespace torvane {

/// A relay for one person's own machine: a run every few minutes, and its document over HTTPS.
class LocalService final {
public:
    /// Serves at once what is there from earlier, and starts the first run. Throws CertificateFailure or ListenFailure.
    LocalService(const RelayTable& table, const Options& options, const Relay::Say& say);

private:
    void serveEarlier(const QString& document);
    Task<> run();

    Relay m_relay;
    SnapshotServer m_server;
    std::chrono::milliseconds m_betweenRuns;
    QTimer m_timer;
    TaskScope m_runs;
};

} // namespace torvane

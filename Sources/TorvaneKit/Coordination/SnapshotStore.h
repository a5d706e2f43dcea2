#pragma once

#include "Chain/NetworkClient.h"
#include "Model/AppSettings.h"
#include "Model/Snapshot.h"
#include "Support/Async.h"
#include "Support/Published.h"
#include "Support/RepeatingTimer.h"
#include "Support/UserDefaults.h"

#include <QDateTime>

#include <optional>

namespace torvane {

/// Owns the market data that every view shows: fetches the relay's snapshot each minute, keeps the last good one on
/// disk, and publishes it. Bound to the main thread; only decoding runs elsewhere. Whatever fails is silent: the last
/// good data stay and the next firing tries again.
class SnapshotStore final : public ObservableObject {
    Q_OBJECT

public:
    /// Loads the cached snapshot, if there is a good one. Starts nothing.
    SnapshotStore(AppSettings& settings, UserDefaults& defaults);

    /// What the views show; none until there was a first good snapshot.
    Published<std::optional<Snapshot>> snapshot{this, {}};

    /// When the data shown were last known to be current, in UTC.
    Published<std::optional<QDateTime>> lastUpdated{this, {}};

    /// Begins all activity: the first fetch, and one a minute from then on. Called once.
    void start();

    /// Fetches now, for a manual refresh. The task must not outlive the store.
    Task<> refresh();

    /// Rebuilds the timers: the minute begins anew.
    void rescheduleTimers();

    /// The network that the badge follows, as the relay last described it; none for Ethereum and for one that the relay
    /// does not list.
    std::optional<L2Entry> selectedL2() const;

private:
    void loadCache();
    Task<> refreshSnapshot(CachePolicy policy);
    void adopt(const Snapshot& fresh, const QByteArray& body);
    void updateMergedSnapshot();

    AppSettings& m_settings;
    UserDefaults& m_defaults;
    std::optional<Snapshot> m_sourceSnapshot; // As last decoded.
    std::optional<RepeatingTimer> m_snapshotTimer;
    bool m_snapshotPollInFlight = false;
    TaskScope m_tasks; // Last, so that what still runs goes first.
};

} // namespace torvane

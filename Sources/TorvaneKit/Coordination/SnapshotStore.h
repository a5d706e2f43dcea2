#pragma once

#include "Chain/LiveGasClient.h"
#include "Chain/NetworkClient.h"
#include "Model/AppSettings.h"
#include "Model/Snapshot.h"
#include "Support/Async.h"
#include "Support/Published.h"
#include "Support/RepeatingTimer.h"
#include "Support/UserDefaults.h"

#include <QDateTime>
#include <QHash>

#include <optional>

namespace torvane {

/// Owns the market data that every view shows. Each minute it fetches the relay's snapshot and keeps the last good one
/// on disk; between two of these it asks public nodes, and what they say is laid over the snapshot while it is fresh.
/// Bound to the main thread; only decoding runs elsewhere. Whatever fails is silent: the last good data stay, live ones
/// until they are too old, and the next firing tries again.
class SnapshotStore final : public ObservableObject {
    Q_OBJECT

public:
    /// Loads the cached snapshot, if there is a good one. Starts nothing.
    SnapshotStore(AppSettings& settings, UserDefaults& defaults);

    /// What the views show; none until there was a first good snapshot.
    Published<std::optional<Snapshot>> snapshot{this, {}};

    /// When the data shown were last known to be current, in UTC.
    Published<std::optional<QDateTime>> lastUpdated{this, {}};

    /// The block of the live Ethereum figures; none while the figures are the relay's.
    Published<std::optional<quint64>> ethereumBlockNumber{this, {}};

    /// Begins all activity: the first fetch, the first live polls, and the timers. Called once.
    void start();

    /// Fetches now and then polls the nodes, for a manual refresh. The task must not outlive the store.
    Task<> refresh();

    /// Rebuilds the timers by the current settings: their intervals begin anew. A poll in flight goes on.
    void rescheduleTimers();

    /// For whoever learns that the machine slept, its clock jumped or its network changed: live figures that are too
    /// old by now disappear, and what was due meanwhile is fetched at once. Does nothing before the start.
    void catchUp();

    /// The network that the badge follows, as the relay last described it; none for Ethereum and for one that the relay
    /// does not list.
    std::optional<L2Entry> selectedL2() const;

private:
    struct TimedEthereumQuote {
        LiveGasQuote quote;
        QDateTime fetchedAt; // When the poll ended.
    };

    struct TimedL2Quote {
        LiveL2Quote quote;
        QDateTime fetchedAt;
    };

    void loadCache();
    void scheduleTimers();
    Task<> refreshSnapshot(CachePolicy policy);
    void adopt(const Snapshot& fresh, const QByteArray& body);
    void reconsider();

    Task<> pollLive();
    Task<> pollEthereum();
    Task<> pollLiveL2();
    void scheduleEthereumTimer();
    void scheduleL2Timer();
    void forgetOtherL2();

    void updateMergedSnapshot();
    std::optional<LiveGasQuote> freshEthereum(const QDateTime& now) const;
    QList<LiveL2Quote> freshL2(const QDateTime& now) const;
    QList<QDateTime> liveTimestamps(const std::optional<LiveGasQuote>& ethereum, const QList<LiveL2Quote>& l2) const;
    void evaluateAlert();

    AppSettings& m_settings;
    UserDefaults& m_defaults;
    LiveGasClient m_liveClient;
    std::optional<Snapshot> m_sourceSnapshot; // As last decoded.
    QByteArray m_sourceBody;                  // What it was decoded from.
    std::optional<TimedEthereumQuote> m_liveEthereum;
    QHash<QString, TimedL2Quote> m_liveL2; // By the network's name.
    std::optional<RepeatingTimer> m_snapshotTimer;
    std::optional<RepeatingTimer> m_ethereumTimer;
    std::optional<RepeatingTimer> m_l2Timer;
    bool m_ethereumPollInFlight = false;
    bool m_l2PollInFlight = false;
    bool m_snapshotPollInFlight = false;
    bool m_alertArmed = true; // Whether the next base fee below the threshold is news.
    TaskScope m_tasks;        // Last, so that what still runs goes first.
};

} // namespace torvane

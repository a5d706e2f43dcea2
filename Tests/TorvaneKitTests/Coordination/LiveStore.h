#pragma once

#include "Coordination/SnapshotStore.h"
#include "Support/Await.h"
#include "Support/JSON.h"
#include "Support/RPCAnswers.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInServer.h"
#include "Support/TemporaryHome.h"
#include "Support/TestConfig.h"

#include <QByteArrayList>
#include <QTimer>

namespace torvane {

/// A store with everything around it in one server and in simulated time: the relay at /snapshot.json, Ethereum's two
/// endpoints at /ethereum and /fallback, the endpoint of the network "Base" at /base.
class LiveStore final {
public:
    LiveStore();
    LiveStore(const LiveStore&) = delete;
    LiveStore& operator=(const LiveStore&) = delete;
    ~LiveStore();

    /// When the relay's document was made, a hundred seconds before the clock's first time.
    static QDateTime documentTime();

    /// The relay's document, unlike all that nodes answer: Ethereum's base fee is 99 gwei, the gas price of "Base" 88.
    /// Each network has an endpoint.
    Snapshot document(std::optional<double> baseBlockTime = 2) const;

    void serve(const Snapshot& snapshot);

    /// Puts a document where the store finds it when it is made.
    void cache(const Snapshot& snapshot);

    /// Makes the store, and nothing more.
    void open();

    /// Makes the store and its timers; returns when it has the relay's document and the answers of the first polls.
    void openAndRefresh();

    void setTime(qint64 secondsAfterTheFirst);
    static QDateTime time();

    /// One poll from the timer's firing to what it publishes.
    void pollEthereum() { poll(1); }
    void pollL2() { poll(2); }

    /// A timer fires: 0 the relay's, 1 Ethereum's, 2 Layer 2's.
    void fire(qsizetype timer);
    QList<QTimer*> timers() const { return store->findChildren<QTimer*>(); }
    QList<int> intervals() const;

    void refresh() { await(store->refresh()); }

    /// The paths asked for since the requests were cleared, in order.
    QByteArrayList targets() const;
    qsizetype requestsFor(const QByteArray& path) const { return targets().count(path); }

    /// From now on the nodes refuse.
    void shutNodesOff();

    /// What is published.
    const Snapshot& shown() const { return *store->snapshot.value(); }
    std::optional<quint64> block() const { return store->ethereumBlockNumber; }
    QDateTime lastUpdated() const { return store->lastUpdated.value().value_or(QDateTime()); }

    /// The published figure of the network "Base".
    std::optional<double> baseCost() const;

    StandInServer server;
    TemporaryHome home;
    UserDefaults defaults;
    AppSettings settings;
    std::unique_ptr<SnapshotStore> store;
    int published = 0; // How often the store has published a snapshot.

private:
    void poll(qsizetype timer);
};

/// A fee history of one block with this base fee, in wei.
QByteArray feeHistoryAt(quint64 wei);

} // namespace torvane

#include "Coordination/SnapshotStore.h"

#include "Chain/LiveCadence.h"
#include "Chain/SnapshotMerge.h"
#include "Coordination/Notifications.h"
#include "Model/Config.h"
#include "Support/Clock.h"
#include "Support/ISO8601.h"
#include "Support/JSON.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace torvane {

namespace {

using namespace std::chrono_literals;

const QString cacheKey = QStringLiteral("cachedSnapshot");
constexpr double relayInterval = 60;
constexpr double relayTolerance = 6;
constexpr double liveTolerance = 0.1; // Of the interval.

/// A stamp that is no time counts as now: the document has just arrived.
QDateTime snapshotDate(const Snapshot& snapshot) {
    return parseInternetDateTime(snapshot.generatedAt).value_or(Clock::now());
}

bool hasNodes(const std::optional<L2Entry>& network) {
    return network && network->rpc && !network->rpc->isEmpty();
}

/// The network may have been away: when it comes back, this is not waited for.
void remainDue(std::optional<RepeatingTimer>& timer) {
    if (timer)
        timer->remainDue();
}

Request relayRequest(CachePolicy policy) {
    Request request;
    request.url = Config::snapshotURL();
    request.timeout = 30s;
    request.bodyLimit = relayBodyLimit;
    request.cachePolicy = policy;
    return request;
}

} // namespace

SnapshotStore::SnapshotStore(AppSettings& settings, UserDefaults& defaults)
    : m_settings(settings)
    , m_defaults(defaults) {
    loadCache();
}

void SnapshotStore::loadCache() {
    const std::optional<QByteArray> cached = m_defaults.data(cacheKey);
    if (!cached)
        return;
    try {
        const Snapshot loaded = JSON::decode<Snapshot>(*cached);
        m_sourceSnapshot = loaded;
        m_sourceBody = *cached;
        snapshot = loaded;
        // Unlike a document that has just arrived, a cached one without a readable stamp has no known age.
        lastUpdated = parseInternetDateTime(loaded.generatedAt);
    } catch (const DecodingError&) {
        // A damaged copy is as good as none; the next good fetch replaces it.
    }
}

void SnapshotStore::start() {
    const auto firstFetch = [this] { m_tasks.run(refreshSnapshot(CachePolicy::useProtocol)); };
    QMetaObject::invokeMethod(this, firstFetch, Qt::QueuedConnection);
    scheduleTimers();
    evaluateAlert();
    const auto firstPolls = [this] { m_tasks.run(pollLive()); };
    QMetaObject::invokeMethod(this, firstPolls, Qt::QueuedConnection);
}

Task<> SnapshotStore::refresh() {
    Task<> relay = refreshSnapshot(CachePolicy::revalidate);
    co_await relay;
    Task<> nodes = pollLive();
    co_await nodes;
}

void SnapshotStore::rescheduleTimers() {
    scheduleTimers();
}

void SnapshotStore::catchUp() {
    if (!m_snapshotTimer)
        return;
    NetworkClient::dropPooledConnections();
    updateMergedSnapshot();
    for (std::optional<RepeatingTimer>* timer : {&m_snapshotTimer, &m_ethereumTimer, &m_l2Timer}) {
        if (*timer)
            (*timer)->fireIfOverdue();
    }
}

std::optional<L2Entry> SnapshotStore::selectedL2() const {
    const BadgeChain& chain = m_settings.badgeChain;
    if (chain.isEthereum() || !m_sourceSnapshot)
        return std::nullopt;
    const L2Entry* found = findL2(chain.title(), m_sourceSnapshot->l2);
    return found ? std::optional(*found) : std::nullopt;
}

void SnapshotStore::scheduleTimers() {
    const auto fetch = [this] { m_tasks.run(refreshSnapshot(CachePolicy::useProtocol)); };
    m_snapshotTimer.emplace(this, relayInterval, relayTolerance, fetch);
    scheduleEthereumTimer();
    m_l2Timer.reset();
    forgetOtherL2();
    updateMergedSnapshot(); // What is no longer followed disappears at once.
    scheduleL2Timer();
}

void SnapshotStore::scheduleEthereumTimer() {
    const double interval = livePollInterval(m_settings.liveCadence, LiveChain::ethereum, std::nullopt);
    const auto poll = [this] { m_tasks.run(pollEthereum()); };
    m_ethereumTimer.emplace(this, interval, interval * liveTolerance, poll);
}

void SnapshotStore::scheduleL2Timer() {
    const std::optional<L2Entry> network = selectedL2();
    if (!hasNodes(network))
        return;
    const double interval = livePollInterval(m_settings.liveCadence, LiveChain::l2, network->blockTimeSec);
    const auto poll = [this] { m_tasks.run(pollLiveL2()); };
    m_l2Timer.emplace(this, interval, interval * liveTolerance, poll);
}

void SnapshotStore::forgetOtherL2() {
    const std::optional<L2Entry> followed = selectedL2();
    m_liveL2.removeIf([&followed](const auto& quote) { return !followed || quote.key() != followed->name; });
}

Task<> SnapshotStore::refreshSnapshot(CachePolicy policy) {
    if (m_snapshotPollInFlight)
        co_return;
    const InFlight poll(m_snapshotPollInFlight);
    try {
        Task<QByteArray> fetch = NetworkClient::request(relayRequest(policy));
        const QByteArray body = co_await fetch;
        if (m_sourceSnapshot && body == m_sourceBody) {
            reconsider(); // The very same bytes: decoding them again could bring nothing new.
            co_return;
        }
        const auto decode = [body] { return JSON::decode<Snapshot>(body); };
        const Snapshot fresh = co_await detached(decode);
        adopt(fresh, body);
    } catch (const DecodingError&) {
        NetworkClient::forget(Config::snapshotURL());
    } catch (const std::exception&) {
        // A failed fetch is silent: the last good data stay and the next firing tries again.
        remainDue(m_snapshotTimer);
    }
}

void SnapshotStore::adopt(const Snapshot& fresh, const QByteArray& body) {
    if (m_sourceSnapshot && m_sourceSnapshot->generatedAt == fresh.generatedAt) {
        reconsider();
        return;
    }
    m_sourceSnapshot = fresh;
    m_sourceBody = body;
    m_defaults.setData(cacheKey, body);
    updateMergedSnapshot();
    scheduleTimers(); // The followed network may have another block time, other nodes, or be gone.
    evaluateAlert();
}

/// The document is the one that we have; time has passed all the same.
void SnapshotStore::reconsider() {
    updateMergedSnapshot();
    evaluateAlert();
}

Task<> SnapshotStore::pollLive() {
    Task<> both = whenBoth(pollEthereum(), pollLiveL2());
    co_await both;
}

Task<> SnapshotStore::pollEthereum() {
    if (m_ethereumPollInFlight)
        co_return;
    const InFlight poll(m_ethereumPollInFlight);
    try {
        Task<LiveGasQuote> call = m_liveClient.ethereum();
        const LiveGasQuote quote = co_await call;
        m_liveEthereum = TimedEthereumQuote{quote, Clock::now()};
        ethereumBlockNumber = quote.blockNumber;
    } catch (const std::exception&) {
        // A failed poll is silent: the last quote stays until it is too old.
        remainDue(m_ethereumTimer);
    }
    updateMergedSnapshot();
    evaluateAlert();
}

Task<> SnapshotStore::pollLiveL2() {
    if (m_l2PollInFlight)
        co_return;
    const std::optional<L2Entry> network = selectedL2();
    if (!hasNodes(network))
        co_return;
    const InFlight poll(m_l2PollInFlight);
    try {
        Task<LiveL2Quote> call = m_liveClient.l2(*network);
        const LiveL2Quote quote = co_await call;
        m_liveL2.insert(quote.name, TimedL2Quote{quote, Clock::now()});
    } catch (const std::exception&) {
        remainDue(m_l2Timer); // Silent, as above.
    }
    updateMergedSnapshot();
    evaluateAlert();
}

void SnapshotStore::updateMergedSnapshot() {
    if (!m_sourceSnapshot)
        return;
    const QDateTime now = Clock::now();
    const std::optional<LiveGasQuote> ethereum = freshEthereum(now);
    const QList<LiveL2Quote> l2 = freshL2(now);
    snapshot = mergeSnapshot(*m_sourceSnapshot, ethereum, l2);
    if (!ethereum)
        ethereumBlockNumber = std::nullopt;
    const QList<QDateTime> times = liveTimestamps(ethereum, l2);
    const auto latest = std::max_element(times.cbegin(), times.cend());
    lastUpdated = latest == times.cend() ? snapshotDate(*m_sourceSnapshot) : *latest;
}

std::optional<LiveGasQuote> SnapshotStore::freshEthereum(const QDateTime& now) const {
    const double interval = livePollInterval(m_settings.liveCadence, LiveChain::ethereum, std::nullopt);
    if (!m_liveEthereum || !isLiveQuoteFresh(m_liveEthereum->fetchedAt, now, interval))
        return std::nullopt;
    return m_liveEthereum->quote;
}

QList<LiveL2Quote> SnapshotStore::freshL2(const QDateTime& now) const {
    QList<LiveL2Quote> fresh;
    for (const TimedL2Quote& live : m_liveL2) {
        const L2Entry* network = findL2(live.quote.name, m_sourceSnapshot->l2);
        if (!network)
            continue;
        const double interval = livePollInterval(m_settings.liveCadence, LiveChain::l2, network->blockTimeSec);
        if (isLiveQuoteFresh(live.fetchedAt, now, interval))
            fresh.append(live.quote);
    }
    return fresh;
}

/// The fetch times of these quotes.
QList<QDateTime> SnapshotStore::liveTimestamps(const std::optional<LiveGasQuote>& ethereum,
                                               const QList<LiveL2Quote>& l2) const {
    QList<QDateTime> times;
    if (ethereum && m_liveEthereum)
        times.append(m_liveEthereum->fetchedAt);
    for (const LiveL2Quote& quote : l2) {
        if (const auto live = m_liveL2.constFind(quote.name); live != m_liveL2.cend())
            times.append(live->fetchedAt);
    }
    return times;
}

void SnapshotStore::evaluateAlert() {
    if (!m_settings.alertEnabled || !snapshot.value())
        return;
    const double baseFee = snapshot.value()->gas.baseFee;
    const qint64 threshold = m_settings.alert;
    if (!(baseFee < static_cast<double>(threshold))) // A base fee that is not a number is not below it either.
        m_alertArmed = true;
    else if (std::exchange(m_alertArmed, false))
        GasNotifier::fireCheapGas(baseFee, threshold, m_settings.sound);
}

} // namespace torvane

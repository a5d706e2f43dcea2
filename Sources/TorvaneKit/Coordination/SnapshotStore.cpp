#include "Coordination/SnapshotStore.h"

#include "Model/Config.h"
#include "Support/Clock.h"
#include "Support/ISO8601.h"
#include "Support/JSON.h"

#include <algorithm>
#include <chrono>

namespace torvane {

namespace {

using namespace std::chrono_literals;

const QString cacheKey = QStringLiteral("cachedSnapshot");
constexpr double relayInterval = 60;
constexpr double relayTolerance = 6;

/// A stamp that is no time counts as now: the document has just arrived.
QDateTime snapshotDate(const Snapshot& snapshot) {
    return parseInternetDateTime(snapshot.generatedAt).value_or(Clock::now());
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
    rescheduleTimers();
}

Task<> SnapshotStore::refresh() {
    Task<> relay = refreshSnapshot(CachePolicy::revalidate);
    co_await relay;
}

std::optional<L2Entry> SnapshotStore::selectedL2() const {
    const BadgeChain& chain = m_settings.badgeChain;
    if (chain.isEthereum() || !m_sourceSnapshot)
        return std::nullopt;
    const QList<L2Entry>& l2 = m_sourceSnapshot->l2;
    const auto found = std::find_if(l2.cbegin(), l2.cend(),
                                    [name = chain.title()](const L2Entry& entry) { return entry.name == name; });
    return found == l2.cend() ? std::nullopt : std::optional(*found);
}

Task<> SnapshotStore::refreshSnapshot(CachePolicy policy) {
    if (m_snapshotPollInFlight)
        co_return;
    const InFlight poll(m_snapshotPollInFlight);
    try {
        Task<QByteArray> fetch = NetworkClient::request(relayRequest(policy));
        const QByteArray body = co_await fetch;
        const auto decode = [body] { return JSON::decode<Snapshot>(body); };
        const Snapshot fresh = co_await detached(decode);
        adopt(fresh, body);
    } catch (const DecodingError&) {
        NetworkClient::forget(Config::snapshotURL());
    } catch (const std::exception&) {
        // A failed fetch is silent: the last good data stay and the next firing tries again.
    }
}

void SnapshotStore::adopt(const Snapshot& fresh, const QByteArray& body) {
    if (m_sourceSnapshot && m_sourceSnapshot->generatedAt == fresh.generatedAt) {
        updateMergedSnapshot();
        return;
    }
    m_sourceSnapshot = fresh;
    m_defaults.setData(cacheKey, body);
    updateMergedSnapshot();
    rescheduleTimers();
}

void SnapshotStore::rescheduleTimers() {
    const auto poll = [this] { m_tasks.run(refreshSnapshot(CachePolicy::useProtocol)); };
    m_snapshotTimer.emplace(this, relayInterval, relayTolerance, poll);
}

void SnapshotStore::updateMergedSnapshot() {
    if (!m_sourceSnapshot)
        return;
    snapshot = m_sourceSnapshot;
    lastUpdated = snapshotDate(*m_sourceSnapshot);
}

} // namespace torvane

#include "TorvaneKitTests/Coordination/LiveStore.h"

#include "Chain/JSONRPC.h"
#include "Support/Clock.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr qint64 firstSecond = 1'790'000'100;
qint64 g_second = firstSecond;

} // namespace

LiveStore::LiveStore()
    : defaults(home.filePath(QStringLiteral("preferences.json")), home.filePath(QStringLiteral("cache")))
    , settings(defaults) {
    TestConfig::setRelayHost(server.host());
    TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
    TestConfig::setEthereumRPCURLs(server.url(QStringLiteral("/ethereum")).toString(),
                                   server.url(QStringLiteral("/fallback")).toString());
    g_second = firstSecond;
    Clock::setSource(&LiveStore::time);
    serve(document());
    server.on("/ethereum", StandInAnswer::ok(RPCAnswers::feeHistory));
    server.on("/fallback", StandInAnswer::status(503));
    server.on("/base", StandInAnswer::ok(RPCAnswers::gasPrice));
}

LiveStore::~LiveStore() {
    store.reset();
    worker().waitForDone(); // Nothing is written into a home that is being removed.
    Clock::setSource(nullptr);
}

QDateTime LiveStore::documentTime() {
    return QDateTime::fromSecsSinceEpoch(firstSecond - 100, Qt::UTC);
}

Snapshot LiveStore::document() const {
    Snapshot snapshot = SimulatedMarket::at(documentTime());
    for (L2Entry& network : snapshot.l2)
        network.rpc = {server.url(QLatin1Char('/') + network.name.toLower()).toString()};
    return snapshot;
}

void LiveStore::serve(const Snapshot& snapshot) {
    server.on("/snapshot.json", StandInAnswer::ok(JSON::encode(snapshot)));
}

void LiveStore::cache(const Snapshot& snapshot) {
    defaults.setData(QStringLiteral("cachedSnapshot"), JSON::encode(snapshot));
    worker().waitForDone();
}

void LiveStore::open() {
    store = std::make_unique<SnapshotStore>(settings, defaults);
    store->snapshot.observe(store.get(), [this](const std::optional<Snapshot>&) { ++published; });
}

void LiveStore::openAndRefresh() {
    open();
    store->rescheduleTimers();
    refresh();
    server.clearRequests();
}

void LiveStore::setTime(qint64 secondsAfterTheFirst) {
    g_second = firstSecond + secondsAfterTheFirst;
}

QDateTime LiveStore::time() {
    return QDateTime::fromSecsSinceEpoch(g_second, Qt::UTC);
}

void LiveStore::fire(qsizetype timer) {
    QVERIFY(timer < timers().size());
    QVERIFY(QMetaObject::invokeMethod(timers()[timer], "timeout"));
}

QList<int> LiveStore::intervals() const {
    QList<int> result;
    for (const QTimer* timer : timers())
        result.append(timer->interval());
    return result;
}

void LiveStore::poll(qsizetype timer) {
    const int before = published;
    fire(timer);
    QTRY_COMPARE_WITH_TIMEOUT(published, before + 1, 30'000);
}

qsizetype LiveStore::requestsFor(const QByteArray& path) const {
    return std::count_if(server.requests().cbegin(), server.requests().cend(),
                         [&path](const StandInRequest& request) { return request.target == path; });
}

std::optional<double> LiveStore::baseCost() const {
    const QList<L2Entry>& networks = store->snapshot.value()->l2;
    const auto base = std::find_if(networks.cbegin(), networks.cend(),
                                   [](const L2Entry& entry) { return entry.name == QLatin1String("Base"); });
    return base == networks.cend() ? std::nullopt : base->costGwei;
}

QByteArray feeHistoryAt(quint64 wei) {
    const QByteArray quantity = JSON::encode(HexQuantity{wei});
    return RPCAnswers::feeHistoryWith(R"("0x2cb417800")", quantity);
}

} // namespace torvane

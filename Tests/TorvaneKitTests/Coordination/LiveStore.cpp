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
    Clock::setSource(nullptr);
}

QDateTime LiveStore::documentTime() {
    return QDateTime::fromSecsSinceEpoch(firstSecond - 100, Qt::UTC);
}

Snapshot LiveStore::document(std::optional<double> baseBlockTime) const {
    Snapshot snapshot = SimulatedMarket::at(documentTime());
    snapshot.gas.baseFee = 99;
    snapshot.l2[2].costGwei = 88;
    snapshot.l2[2].blockTimeSec = baseBlockTime;
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

QByteArrayList LiveStore::targets() const {
    QByteArrayList result;
    for (const StandInRequest& request : server.requests())
        result.append(request.target);
    return result;
}

void LiveStore::shutNodesOff() {
    server.on("/ethereum", StandInAnswer::status(503));
    server.on("/base", StandInAnswer::status(503));
}

std::optional<double> LiveStore::baseCost() const {
    const QList<L2Entry>& networks = shown().l2;
    const auto base = std::find_if(networks.cbegin(), networks.cend(),
                                   [](const L2Entry& entry) { return entry.name == QLatin1String("Base"); });
    return base == networks.cend() ? std::nullopt : base->costGwei;
}

QByteArray feeHistoryAt(quint64 wei) {
    const QByteArray quantity = JSON::encode(HexQuantity{wei});
    return RPCAnswers::feeHistoryWith(R"("0x2cb417800")", quantity);
}

} // namespace torvane

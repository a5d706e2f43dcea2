#include "TorvaneKitTests/Coordination/LiveStore.h"

#include <QLoggingCategory>
#include <QTest>

using namespace torvane;

namespace {

constexpr double relayBaseFee = 99; // Unlike any that a node answers here.
const BadgeChain base = BadgeChain::l2(QStringLiteral("Base"));

Snapshot relayDocument(const LiveStore& live, std::optional<double> baseBlockTime = 2) {
    Snapshot snapshot = live.document();
    snapshot.gas.baseFee = relayBaseFee;
    snapshot.l2[2].costGwei = 88;
    snapshot.l2[2].blockTimeSec = baseBlockTime;
    return snapshot;
}

} // namespace

class LivePollingTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<LiveStore> m_live;

    const Snapshot& shown() const { return *m_live->store->snapshot.value(); }

    std::optional<quint64> block() const { return m_live->store->ethereumBlockNumber; }

    QDateTime lastUpdated() const { return m_live->store->lastUpdated.value().value_or(QDateTime()); }

    /// From now on the nodes refuse.
    void shutNodesOff() {
        m_live->server.on("/ethereum", StandInAnswer::status(503));
        m_live->server.on("/base", StandInAnswer::status(503));
    }

    QByteArrayList targets() const {
        QByteArrayList result;
        for (const StandInRequest& request : m_live->server.requests())
            result.append(request.target);
        return result;
    }

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        m_live = std::make_unique<LiveStore>();
        m_live->serve(relayDocument(*m_live));
    }

    void cleanup() { m_live.reset(); }

    void aFreshQuoteIsLaidOverTheRelaysSnapshot() {
        m_live->openAndRefresh();
        QCOMPARE(shown().gas.baseFee, 12.0);
        QCOMPARE(shown().gas.high, 12 + 0.65);
        QCOMPARE(block(), std::optional<quint64>(6));
        QCOMPARE(lastUpdated(), LiveStore::time());
        QCOMPARE(shown().price.eth, relayDocument(*m_live).price.eth);
    }

    void withoutASnapshotOnlyTheBlockNumberIsPublished() {
        m_live->server.on("/snapshot.json", StandInAnswer::status(503));
        m_live->openAndRefresh();
        QCOMPARE(block(), std::optional<quint64>(6));
        QVERIFY(!m_live->store->snapshot.value());
        QVERIFY(!m_live->store->lastUpdated.value());
        QCOMPARE(m_live->published, 0);
    }

    void theTimersFollowCadenceAndNetwork_data() {
        QTest::addColumn<LiveGasCadence>("cadence");
        QTest::addColumn<BadgeChain>("chain");
        QTest::addColumn<std::optional<double>>("blockTime");
        QTest::addColumn<QList<int>>("intervals");
        using enum LiveGasCadence;
        const BadgeChain ethereum = BadgeChain::ethereum();
        const BadgeChain unknown = BadgeChain::l2(QStringLiteral("Atlantis"));
        const std::optional<double> two = 2;
        QTest::newRow("Ethereum") << perBlock << ethereum << two << QList{60'000, 12'000};
        QTest::newRow("Ethereum, 15s") << fifteen << ethereum << two << QList{60'000, 15'000};
        QTest::newRow("Ethereum, 60s") << sixty << ethereum << two << QList{60'000, 60'000};
        QTest::newRow("Layer 2, blocks of 2 s") << perBlock << base << two << QList{60'000, 12'000, 5'000};
        QTest::newRow("Layer 2, blocks of 30 s")
            << perBlock << base << std::optional<double>(30) << QList{60'000, 12'000, 30'000};
        QTest::newRow("Layer 2, block time unknown")
            << perBlock << base << std::optional<double>() << QList{60'000, 12'000, 5'000};
        QTest::newRow("Layer 2, 30s") << thirty << base << two << QList{60'000, 30'000, 30'000};
        QTest::newRow("Layer 2, not listed") << thirty << unknown << two << QList{60'000, 30'000};
    }

    void theTimersFollowCadenceAndNetwork() {
        QFETCH(LiveGasCadence, cadence);
        QFETCH(BadgeChain, chain);
        QFETCH(std::optional<double>, blockTime);
        m_live->settings.liveCadence = cadence;
        m_live->settings.badgeChain = chain;
        m_live->cache(relayDocument(*m_live, blockTime));
        m_live->open();
        QVERIFY(m_live->timers().isEmpty());
        m_live->store->rescheduleTimers();
        QTEST(m_live->intervals(), "intervals");
        const QList<QTimer*> timers = m_live->timers();
        for (const QTimer* timer : timers) {
            QVERIFY(timer->isActive());
            QVERIFY(!timer->isSingleShot());
            QVERIFY(timer->timerType() != Qt::PreciseTimer); // Wakeups may be batched.
        }
        QVERIFY(m_live->server.requests().isEmpty()); // No timer fires at once.
    }

    void aQuoteCountsForThreePollsOrAMinuteAndThenTheRelaysFiguresReturn_data() {
        QTest::addColumn<LiveGasCadence>("cadence");
        QTest::addColumn<qint64>("lastFreshSecond");
        QTest::newRow("per block") << LiveGasCadence::perBlock << qint64{60};
        QTest::newRow("15s") << LiveGasCadence::fifteen << qint64{60};
        QTest::newRow("30s") << LiveGasCadence::thirty << qint64{90};
        QTest::newRow("60s") << LiveGasCadence::sixty << qint64{180};
    }

    void aQuoteCountsForThreePollsOrAMinuteAndThenTheRelaysFiguresReturn() {
        QFETCH(LiveGasCadence, cadence);
        QFETCH(qint64, lastFreshSecond);
        m_live->settings.liveCadence = cadence;
        m_live->openAndRefresh();
        const QDateTime fetched = LiveStore::time();
        shutNodesOff();
        m_live->setTime(lastFreshSecond);
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, 12.0);
        QCOMPARE(block(), std::optional<quint64>(6));
        QCOMPARE(lastUpdated(), fetched);
        m_live->setTime(lastFreshSecond + 1);
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, relayBaseFee);
        QCOMPARE(JSON::encode(shown()), JSON::encode(relayDocument(*m_live)));
        QVERIFY(!block());
        QCOMPARE(lastUpdated(), LiveStore::documentTime());
    }

    void anOldQuoteIsNotForgottenButComesBackWithALongerWindow() {
        m_live->openAndRefresh();
        shutNodesOff();
        m_live->setTime(170);
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, relayBaseFee);
        m_live->settings.liveCadence = LiveGasCadence::sixty;
        m_live->store->rescheduleTimers();
        QCOMPARE(shown().gas.baseFee, 12.0);
    }

    void aQuoteFromTheFutureDoesNotCount() {
        m_live->openAndRefresh();
        shutNodesOff();
        m_live->setTime(-1); // The clock was set back.
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, relayBaseFee);
        QVERIFY(!block());
        m_live->setTime(0);
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, 12.0);
    }

    void aQuoteIsAsOldAsItsAnswer() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/ethereum", [this](const StandInRequest&) {
            m_live->setTime(7); // The node takes its time.
            return StandInAnswer::ok(RPCAnswers::feeHistory);
        });
        m_live->setTime(3);
        m_live->pollEthereum();
        QCOMPARE(lastUpdated(), LiveStore::time());
        QCOMPARE(LiveStore::documentTime().secsTo(lastUpdated()), 107);
    }

    void whatIsShownIsAsCurrentAsTheLatestQuoteInIt() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->setTime(20);
        m_live->pollL2();
        QCOMPARE(lastUpdated(), LiveStore::time());
        m_live->setTime(30);
        m_live->pollEthereum();
        QCOMPARE(lastUpdated(), LiveStore::time());
        shutNodesOff();
        m_live->setTime(85); // Only Ethereum's is still fresh.
        m_live->pollL2();
        QCOMPARE(LiveStore::documentTime().secsTo(lastUpdated()), 130);
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
        QCOMPARE(shown().gas.baseFee, 12.0);
    }

    void aNetworksQuoteHasItsOwnWindow_data() {
        QTest::addColumn<double>("blockTime");
        QTest::addColumn<qint64>("lastFreshSecond");
        QTest::newRow("blocks of 2 s") << 2.0 << qint64{60};
        QTest::newRow("blocks of 30 s") << 30.0 << qint64{90};
    }

    void aNetworksQuoteHasItsOwnWindow() {
        QFETCH(double, blockTime);
        QFETCH(qint64, lastFreshSecond);
        m_live->settings.badgeChain = base;
        m_live->serve(relayDocument(*m_live, blockTime));
        m_live->openAndRefresh();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        shutNodesOff();
        m_live->setTime(lastFreshSecond);
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        m_live->setTime(lastFreshSecond + 1);
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
    }

    void onlyTheBadgesNetworkIsPolled() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->refresh();
        QByteArrayList asked = targets();
        QCOMPARE(asked.takeFirst(), QByteArray("/snapshot.json"));
        std::sort(asked.begin(), asked.end());
        QCOMPARE(asked, QByteArrayList({"/base", "/ethereum"}));
    }

    void aNetworkThatIsNoLongerFollowedDisappearsAtOnce_data() {
        QTest::addColumn<BadgeChain>("next");
        QTest::addColumn<int>("timers");
        QTest::newRow("Ethereum") << BadgeChain::ethereum() << 2;
        QTest::newRow("another network") << BadgeChain::l2(QStringLiteral("Arbitrum")) << 3;
        QTest::newRow("one that is not listed") << BadgeChain::l2(QStringLiteral("base")) << 2;
    }

    void aNetworkThatIsNoLongerFollowedDisappearsAtOnce() {
        QFETCH(BadgeChain, next);
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        m_live->settings.badgeChain = next;
        m_live->store->rescheduleTimers();
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
        QTEST(static_cast<int>(m_live->timers().size()), "timers");
        m_live->settings.badgeChain = base; // The quote was not merely hidden.
        m_live->store->rescheduleTimers();
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
    }

    void aNetworkWithoutEndpointsIsNotPolled_data() {
        QTest::addColumn<bool>("isListed");
        QTest::newRow("no list") << false;
        QTest::newRow("an empty list") << true;
    }

    void aNetworkWithoutEndpointsIsNotPolled() {
        QFETCH(bool, isListed);
        Snapshot snapshot = relayDocument(*m_live);
        snapshot.l2[2].rpc = isListed ? std::optional(QStringList()) : std::nullopt;
        m_live->serve(snapshot);
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->refresh();
        QCOMPARE(targets(), QByteArrayList({"/snapshot.json", "/ethereum"}));
        QCOMPARE(m_live->timers().size(), 2);
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
    }

    void theQuoteOfANetworkThatTheRelayDropsIsNotMerged() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        Snapshot next = relayDocument(*m_live);
        next.generatedAt = QStringLiteral("2026-09-21T14:15:00Z");
        next.l2.removeAt(2);
        m_live->serve(next);
        m_live->refresh();
        QVERIFY(!m_live->baseCost());
        QCOMPARE(m_live->timers().size(), 2);
        QCOMPARE(shown().l2.size(), next.l2.size());
    }

    void aNewDocumentRebuildsAllTimersAndAnUnchangedOneNone() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        QList<QPointer<QTimer>> before;
        for (QTimer* timer : m_live->timers())
            before.append(timer);
        const int published = m_live->published;
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->published, published + 1, 30'000); // Merged anew all the same.
        QVERIFY(std::all_of(before.cbegin(), before.cend(), [](const auto& timer) { return !timer.isNull(); }));
        Snapshot next = relayDocument(*m_live, 30);
        next.generatedAt = QStringLiteral("2026-09-21T14:15:00Z");
        m_live->serve(next);
        m_live->fire(0);
        QTRY_VERIFY_WITH_TIMEOUT(before.constFirst().isNull(), 30'000);
        QVERIFY(std::all_of(before.cbegin(), before.cend(), [](const auto& timer) { return timer.isNull(); }));
        QCOMPARE(m_live->intervals(), QList<int>({60'000, 12'000, 30'000}));
    }

    void anUnchangedDocumentLetsOldQuotesAgeOut() {
        m_live->openAndRefresh();
        m_live->setTime(61);
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(shown().gas.baseFee, relayBaseFee, 30'000);
        QVERIFY(!block());
    }

    void rebuildingTheTimersLeavesAPollInFlightAlone() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        shutNodesOff();
        m_live->server.on("/base",
                          StandInAnswer::ok(R"({"result":"0x3b9aca00"})").dripped(8, std::chrono::milliseconds(1)));
        m_live->fire(2);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
        m_live->store->rescheduleTimers();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->baseCost(), std::optional(1.0), 30'000);
        QCOMPARE(m_live->requestsFor("/base"), 1);
    }

    void theAnswerForANetworkNoLongerFollowedGoesWithTheNextRebuild() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/base",
                          StandInAnswer::ok(R"({"result":"0x3b9aca00"})").dripped(8, std::chrono::milliseconds(1)));
        m_live->fire(2);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
        m_live->settings.badgeChain = BadgeChain::ethereum();
        m_live->store->rescheduleTimers();
        const int published = m_live->published;
        QTRY_COMPARE_WITH_TIMEOUT(m_live->published, published + 1, 30'000);
        m_live->store->rescheduleTimers();
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
    }

    void onePollOfEachKindRunsAtATime() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/ethereum", StandInAnswer::silent());
        m_live->server.on("/base", StandInAnswer::silent());
        for (int firing = 0; firing < 3; ++firing) {
            m_live->fire(1);
            m_live->fire(2);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_live->server.requests().size(), 2, 30'000);
        m_live->refresh(); // Its polls return at once.
        QCOMPARE(m_live->requestsFor("/ethereum"), 1);
        QCOMPARE(m_live->requestsFor("/base"), 1);
        const int published = m_live->published;
        m_live->server.closeConnections(StandInAnswer::Ending::reset);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->published, published + 2, 30'000);
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->pollEthereum(); // The mark was cleared.
        QCOMPARE(shown().gas.baseFee, 5.0);
    }

    void aBadFeeHistoryIsOneSilentFailure_data() {
        QTest::addColumn<QByteArray>("body");
        for (const auto& [name, body] : RPCAnswers::badFeeHistories())
            QTest::newRow(name) << body;
    }

    void aBadFeeHistoryIsOneSilentFailure() {
        QFETCH(QByteArray, body);
        m_live->openAndRefresh();
        const QByteArray before = JSON::encode(shown());
        m_live->server.on("/ethereum", StandInAnswer::ok(body));
        m_live->pollEthereum();
        QCOMPARE(JSON::encode(shown()), before);
        QCOMPARE(block(), std::optional<quint64>(6));
        QCOMPARE(targets(), QByteArrayList({"/ethereum", "/fallback"})); // Each once.
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->pollEthereum();
        QCOMPARE(shown().gas.baseFee, 5.0);
    }

    void aBadGasPriceIsOneSilentFailure_data() {
        QTest::addColumn<QByteArray>("body");
        for (const auto& [name, body] : RPCAnswers::badGasPrices())
            QTest::newRow(name) << body;
    }

    void aBadGasPriceIsOneSilentFailure() {
        QFETCH(QByteArray, body);
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/base", StandInAnswer::ok(body));
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        QCOMPARE(targets(), QByteArrayList({"/base"}));
        m_live->server.on("/base", StandInAnswer::ok(R"({"result":"0x3b9aca00"})"));
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(1.0));
    }

    void everyPollPublishesChangedOrNot() {
        m_live->openAndRefresh();
        const int before = m_live->published;
        m_live->pollEthereum();
        m_live->pollEthereum();
        shutNodesOff();
        m_live->pollEthereum();
        QCOMPARE(m_live->published, before + 3);
    }

    void startingFetchesAndPollsAfterItReturns() {
        m_live->cache(relayDocument(*m_live));
        m_live->settings.badgeChain = base;
        m_live->open();
        m_live->store->start();
        QVERIFY(m_live->server.requests().isEmpty());
        QCOMPARE(m_live->intervals(), QList<int>({60'000, 12'000, 5'000}));
        QTRY_COMPARE_WITH_TIMEOUT(m_live->baseCost(), std::optional(0.006), 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(shown().gas.baseFee, 12.0, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
    }

    void refreshingAsksTheRelayBeforeTheNodes() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/snapshot.json", [this](const StandInRequest&) {
            return StandInAnswer::ok(JSON::encode(relayDocument(*m_live)))
                .dripped(20'000, std::chrono::milliseconds(1));
        });
        m_live->refresh();
        QCOMPARE(targets().constFirst(), QByteArray("/snapshot.json"));
        QCOMPARE(targets().size(), 3);
    }

    void refreshingDuringAFetchStillPolls() {
        m_live->openAndRefresh();
        m_live->server.on("/snapshot.json", StandInAnswer::silent());
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->refresh();
        QCOMPARE(m_live->requestsFor("/snapshot.json"), 1);
        QCOMPARE(shown().gas.baseFee, 5.0);
    }

    void theStoreMayGoWhileItPolls() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/ethereum", StandInAnswer::silent());
        m_live->server.on("/base", StandInAnswer::silent());
        m_live->fire(1);
        m_live->fire(2);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->server.requests().size(), 2, 30'000);
        m_live->store.reset();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->server.openConnectionCount(), 0, 30'000);
    }

    void noPollCopiesAHistory() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        const double* ethereum = shown().gas.history.constData();
        const double* network = shown().l2[2].history->constData();
        m_live->pollEthereum();
        m_live->pollL2();
        QCOMPARE(shown().gas.history.constData(), ethereum);
        QCOMPARE(shown().l2[2].history->constData(), network);
    }
};

QTEST_GUILESS_MAIN(LivePollingTest)
#include "LivePollingTest.moc"

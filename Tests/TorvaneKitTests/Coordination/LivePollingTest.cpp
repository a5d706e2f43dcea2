#include "TorvaneKitTests/Coordination/LiveStoreFixture.h"

#include <QTest>

using namespace torvane;

namespace {

const BadgeChain base = BadgeChain::l2(QStringLiteral("Base"));

} // namespace

class LivePollingTest final : public LiveStoreFixture {
    Q_OBJECT

private Q_SLOTS:
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
        m_live->cache(m_live->document(blockTime));
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

    void onlyTheBadgesNetworkIsPolled() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->refresh();
        QByteArrayList asked = m_live->targets();
        QCOMPARE(asked.takeFirst(), QByteArray("/snapshot.json"));
        std::sort(asked.begin(), asked.end());
        QCOMPARE(asked, QByteArrayList({"/base", "/ethereum"}));
    }

    void aNetworkWithoutEndpointsIsNotPolled_data() {
        QTest::addColumn<bool>("isListed");
        QTest::newRow("no list") << false;
        QTest::newRow("an empty list") << true;
    }

    void aNetworkWithoutEndpointsIsNotPolled() {
        QFETCH(bool, isListed);
        Snapshot snapshot = m_live->document();
        snapshot.l2[2].rpc = isListed ? std::optional(QStringList()) : std::nullopt;
        m_live->serve(snapshot);
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->refresh();
        QCOMPARE(m_live->targets(), QByteArrayList({"/snapshot.json", "/ethereum"}));
        QCOMPARE(m_live->timers().size(), 2);
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
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
        Snapshot next = m_live->document(30);
        next.generatedAt = QStringLiteral("2026-09-21T14:15:00Z");
        m_live->serve(next);
        m_live->fire(0);
        QTRY_VERIFY_WITH_TIMEOUT(before.constFirst().isNull(), 30'000);
        QVERIFY(std::all_of(before.cbegin(), before.cend(), [](const auto& timer) { return timer.isNull(); }));
        QCOMPARE(m_live->intervals(), QList<int>({60'000, 12'000, 30'000}));
    }

    void rebuildingTheTimersLeavesAPollInFlightAlone() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->shutNodesOff();
        m_live->server.on("/base",
                          StandInAnswer::ok(R"({"result":"0x3b9aca00"})").dripped(8, std::chrono::milliseconds(1)));
        m_live->fire(2);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
        m_live->store->rescheduleTimers();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->baseCost(), std::optional(1.0), 30'000);
        QCOMPARE(m_live->requestsFor("/base"), 1);
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
        m_live->shutNodesOff(); // A connection that dies before an answer is tried once more.
        m_live->server.closeConnections(StandInAnswer::Ending::reset);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->published, published + 2, 30'000);
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->pollEthereum(); // The mark was cleared.
        QCOMPARE(m_live->shown().gas.baseFee, 5.0);
    }

    void aBadFeeHistoryIsOneSilentFailure_data() {
        QTest::addColumn<QByteArray>("body");
        for (const auto& [name, body] : RPCAnswers::badFeeHistories())
            QTest::newRow(name) << body;
    }

    void aBadFeeHistoryIsOneSilentFailure() {
        QFETCH(QByteArray, body);
        m_live->openAndRefresh();
        const QByteArray before = JSON::encode(m_live->shown());
        m_live->server.on("/ethereum", StandInAnswer::ok(body));
        m_live->pollEthereum();
        QCOMPARE(JSON::encode(m_live->shown()), before);
        QCOMPARE(m_live->block(), std::optional<quint64>(6));
        QCOMPARE(m_live->targets(), QByteArrayList({"/ethereum", "/fallback"})); // Each once.
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 5.0);
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
        QCOMPARE(m_live->targets(), QByteArrayList({"/base"}));
        m_live->server.on("/base", StandInAnswer::ok(R"({"result":"0x3b9aca00"})"));
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(1.0));
    }

    void startingFetchesAndPollsAfterItReturns() {
        m_live->cache(m_live->document());
        m_live->settings.badgeChain = base;
        m_live->open();
        m_live->store->start();
        QVERIFY(m_live->server.requests().isEmpty());
        QCOMPARE(m_live->intervals(), QList<int>({60'000, 12'000, 5'000}));
        QTRY_COMPARE_WITH_TIMEOUT(m_live->baseCost(), std::optional(0.006), 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->shown().gas.baseFee, 12.0, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
    }

    void refreshingAsksTheRelayBeforeTheNodes() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/snapshot.json", [this](const StandInRequest&) {
            return StandInAnswer::ok(JSON::encode(m_live->document())).dripped(20'000, std::chrono::milliseconds(1));
        });
        m_live->refresh();
        QCOMPARE(m_live->targets().constFirst(), QByteArray("/snapshot.json"));
        QCOMPARE(m_live->targets().size(), 3);
    }

    void refreshingPollsBothAtOnceAndWaitsForBoth() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->server.on("/ethereum", StandInAnswer::silent());
        m_live->server.on("/base", StandInAnswer::ok(R"({"result":"0x3b9aca00"})"));
        const Task<> refresh = m_live->store->refresh();
        refresh.start();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->baseCost(), std::optional(1.0), 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/ethereum"), 1, 30'000);
        QVERIFY(!refresh.isDone());
        m_live->shutNodesOff(); // A connection that dies before an answer is tried once more.
        m_live->server.closeConnections(StandInAnswer::Ending::reset);
        QTRY_VERIFY_WITH_TIMEOUT(refresh.isDone(), 30'000);
    }

    void refreshingDuringAFetchStillPolls() {
        m_live->openAndRefresh();
        m_live->server.on("/snapshot.json", StandInAnswer::silent());
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(5'000'000'000)));
        m_live->refresh();
        QCOMPARE(m_live->requestsFor("/snapshot.json"), 1);
        QCOMPARE(m_live->shown().gas.baseFee, 5.0);
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
};

QTEST_GUILESS_MAIN(LivePollingTest)
#include "LivePollingTest.moc"

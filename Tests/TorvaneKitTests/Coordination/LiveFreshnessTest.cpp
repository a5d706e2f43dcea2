#include "TorvaneKitTests/Coordination/LiveStoreFixture.h"

#include <QTest>

using namespace torvane;

namespace {

const BadgeChain base = BadgeChain::l2(QStringLiteral("Base"));

} // namespace

class LiveFreshnessTest final : public LiveStoreFixture {
    Q_OBJECT

private Q_SLOTS:
    void aFreshQuoteIsLaidOverTheRelaysSnapshot() {
        m_live->openAndRefresh();
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
        QCOMPARE(m_live->shown().gas.high, 12 + 0.65);
        QCOMPARE(m_live->block(), std::optional<quint64>(6));
        QCOMPARE(m_live->lastUpdated(), LiveStore::time());
        QCOMPARE(m_live->shown().price.eth, m_live->document().price.eth);
    }

    void withoutASnapshotOnlyTheBlockNumberIsPublished() {
        m_live->server.on("/snapshot.json", StandInAnswer::status(503));
        m_live->openAndRefresh();
        QCOMPARE(m_live->block(), std::optional<quint64>(6));
        QVERIFY(!m_live->store->snapshot.value());
        QVERIFY(!m_live->store->lastUpdated.value());
        QCOMPARE(m_live->published, 0);
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
        m_live->shutNodesOff();
        m_live->setTime(lastFreshSecond);
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
        QCOMPARE(m_live->block(), std::optional<quint64>(6));
        QCOMPARE(m_live->lastUpdated(), fetched);
        m_live->setTime(lastFreshSecond + 1);
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 99.0);
        QCOMPARE(JSON::encode(m_live->shown()), JSON::encode(m_live->document()));
        QVERIFY(!m_live->block());
        QCOMPARE(m_live->lastUpdated(), LiveStore::documentTime());
    }

    void anOldQuoteIsNotForgottenButComesBackWithALongerWindow() {
        m_live->openAndRefresh();
        m_live->shutNodesOff();
        m_live->setTime(170);
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 99.0);
        m_live->settings.liveCadence = LiveGasCadence::sixty;
        m_live->store->rescheduleTimers();
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
    }

    void aQuoteFromTheFutureDoesNotCount() {
        m_live->openAndRefresh();
        m_live->shutNodesOff();
        m_live->setTime(-1); // The clock was set back.
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 99.0);
        QVERIFY(!m_live->block());
        m_live->setTime(0);
        m_live->pollEthereum();
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
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
        QCOMPARE(m_live->lastUpdated(), LiveStore::time());
        QCOMPARE(LiveStore::documentTime().secsTo(m_live->lastUpdated()), 107);
    }

    void whatIsShownIsAsCurrentAsTheLatestQuoteInIt() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        m_live->setTime(20);
        m_live->pollL2();
        QCOMPARE(m_live->lastUpdated(), LiveStore::time());
        m_live->setTime(30);
        m_live->pollEthereum();
        QCOMPARE(m_live->lastUpdated(), LiveStore::time());
        m_live->shutNodesOff();
        m_live->setTime(85); // Only Ethereum's is still fresh.
        m_live->pollL2();
        QCOMPARE(LiveStore::documentTime().secsTo(m_live->lastUpdated()), 130);
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
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
        m_live->serve(m_live->document(blockTime));
        m_live->openAndRefresh();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        m_live->shutNodesOff();
        m_live->setTime(lastFreshSecond);
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(0.006));
        m_live->setTime(lastFreshSecond + 1);
        m_live->pollL2();
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
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

    void theQuoteOfANetworkThatTheRelayDropsIsNotMerged() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        Snapshot next = m_live->document();
        next.generatedAt = QStringLiteral("2026-09-21T14:15:00Z");
        next.l2.removeAt(2);
        m_live->serve(next);
        m_live->refresh();
        QVERIFY(!m_live->baseCost());
        QCOMPARE(m_live->timers().size(), 2);
        QCOMPARE(m_live->shown().l2.size(), next.l2.size());
    }

    void anUnchangedDocumentLetsOldQuotesAgeOut() {
        m_live->openAndRefresh();
        m_live->setTime(61);
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->shown().gas.baseFee, 99.0, 30'000);
        QVERIFY(!m_live->block());
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

    void everyPollPublishesChangedOrNot() {
        m_live->openAndRefresh();
        const int before = m_live->published;
        m_live->pollEthereum();
        m_live->pollEthereum();
        m_live->shutNodesOff();
        m_live->pollEthereum();
        QCOMPARE(m_live->published, before + 3);
    }

    void noPollCopiesAHistory() {
        m_live->settings.badgeChain = base;
        m_live->openAndRefresh();
        const double* ethereum = m_live->shown().gas.history.constData();
        const double* network = m_live->shown().l2[2].history->constData();
        m_live->pollEthereum();
        m_live->pollL2();
        QCOMPARE(m_live->shown().gas.history.constData(), ethereum);
        QCOMPARE(m_live->shown().l2[2].history->constData(), network);
    }
};

QTEST_GUILESS_MAIN(LiveFreshnessTest)
#include "LiveFreshnessTest.moc"

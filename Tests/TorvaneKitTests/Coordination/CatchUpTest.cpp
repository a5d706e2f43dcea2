#include "TorvaneKitTests/Coordination/LiveStoreFixture.h"

#include <QTest>

using namespace torvane;

class CatchUpTest final : public LiveStoreFixture {
    Q_OBJECT

    void prepare() override { m_live->settings.badgeChain = BadgeChain::l2(QStringLiteral("Base")); }

private Q_SLOTS:
    void afterANightAsleepEverythingIsFetchedAtOnce() {
        m_live->openAndRefresh();
        m_live->setTime(8 * 3600);
        m_live->store->catchUp();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/ethereum"), 1, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
    }

    void figuresThatGrewOldAsleepAreGoneBeforeAnythingIsFetched() {
        m_live->openAndRefresh();
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
        m_live->setTime(8 * 3600);
        m_live->store->catchUp();
        QCOMPARE(m_live->shown().gas.baseFee, 99.0);
        QCOMPARE(m_live->baseCost(), std::optional(88.0));
        QVERIFY(!m_live->block());
    }

    void whatIsNotDueYetIsNotFetched() {
        m_live->openAndRefresh();
        m_live->setTime(13); // A block of Ethereum's, two polls of Layer 2, not a minute.
        m_live->store->catchUp();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/ethereum"), 1, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
        QCOMPARE(m_live->requestsFor("/snapshot.json"), 0);
        QCOMPARE(m_live->shown().gas.baseFee, 12.0);
    }

    void whatFailedWithoutANetworkIsFetchedWhenItIsBack() {
        m_live->server.on("/snapshot.json", StandInAnswer::status(503));
        m_live->shutNodesOff();
        m_live->openAndRefresh();
        m_live->setTime(1);
        m_live->store->catchUp();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/snapshot.json"), 1, 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/ethereum"), 1, 30'000);
    }

    void aNodeThatFailedIsAskedWhenTheNetworkIsBackAndTheOthersAreNot() {
        m_live->openAndRefresh();
        m_live->server.on("/base", StandInAnswer::status(503));
        m_live->pollL2();
        m_live->server.clearRequests();
        m_live->setTime(1);
        m_live->store->catchUp();
        QTRY_COMPARE_WITH_TIMEOUT(m_live->requestsFor("/base"), 1, 30'000);
        QCOMPARE(m_live->targets(), QByteArrayList{"/base"});
    }

    void theNextRequestsMakeConnectionsOfTheirOwn() {
        m_live->openAndRefresh();
        const int before = m_live->server.connectionCount();
        m_live->pollEthereum();
        QCOMPARE(m_live->server.connectionCount(), before); // Kept alive.
        m_live->store->catchUp();
        m_live->pollEthereum();
        QVERIFY(m_live->server.connectionCount() > before);
    }

    void beforeTheStartNothingHappens() {
        m_live->open();
        m_live->store->catchUp();
        QVERIFY(m_live->timers().isEmpty());
        QCOMPARE(m_live->published, 0);
    }
};

QTEST_GUILESS_MAIN(CatchUpTest)
#include "CatchUpTest.moc"

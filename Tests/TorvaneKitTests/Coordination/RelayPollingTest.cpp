#include "Support/LogLines.h"
#include "TorvaneKitTests/Coordination/RelayStoreFixture.h"

#include <QScopeGuard>
#include <QSemaphore>

using namespace torvane;

/// How the store asks its relay, and what it makes of the answers.
class RelayPollingTest final : public RelayStoreFixture {
    Q_OBJECT

private Q_SLOTS:
    void aFailureLeavesTheLastGoodDataAsTheyAre_data() {
        QTest::addColumn<StandInAnswer>("answer");
        const QByteArray good = JSON::encode(document(1));
        QTest::newRow("not found") << StandInAnswer::status(404, good);
        QTest::newRow("server error") << StandInAnswer::status(503);
        QTest::newRow("no content") << StandInAnswer::status(204);
        QTest::newRow("not JSON") << StandInAnswer::ok("<html>maintenance</html>");
        QTest::newRow("without staking") << StandInAnswer::ok(QByteArray(good).replace("\"staking\"", "\"stacking\""));
        QTest::newRow("a price in words") << StandInAnswer::ok(QByteArray(good).replace("\"eth\":", "\"eth\":\"x\"+"));
        QTest::newRow("cut in the middle")
            << StandInAnswer::ok(good).cutShort(good.size() / 2, StandInAnswer::Ending::abruptClose);
        QTest::newRow("reset") << StandInAnswer::ok(good).cutShort(100, StandInAnswer::Ending::reset);
        QTest::newRow("endless") << StandInAnswer::endlessBody();
        QTest::newRow("redirected off HTTPS") << StandInAnswer::redirect(302, "http://localhost/snapshot.json");
    }

    void aFailureLeavesTheLastGoodDataAsTheyAre() {
        QFETCH(StandInAnswer, answer);
        serve(document());
        openStore();
        refresh();
        QTRY_COMPARE_WITH_TIMEOUT(cached(), JSON::encode(document()), 30000);
        const Announcements announced(*m_store);
        m_relay->on("/snapshot.json", answer);
        refresh();
        QCOMPARE(announced.snapshots, 1);
        QCOMPARE(m_store->snapshot.value()->generatedAt, document().generatedAt);
        QCOMPARE(m_store->lastUpdated.value(), documentTime());
        worker().waitForDone();
        QCOMPARE(cached(), JSON::encode(document()));
        serve(document(2)); // And the next firing tries again.
        refresh();
        QCOMPARE(m_store->snapshot.value()->generatedAt, document(2).generatedAt);
    }

    void aBodyThatMakesNoSenseIsNotAskedToBeConfirmed() {
        m_relay->on("/snapshot.json", StandInAnswer::ok("{").header("ETag", "\"a\""));
        openStore();
        refresh();
        refresh();
        QCOMPARE(m_relay->requests().size(), 2);
        QVERIFY(m_relay->requests().last().header("If-None-Match").isNull());
    }

    void oneFetchRunsAtATime() {
        m_relay->on("/snapshot.json", StandInAnswer::raw({})); // Never answered.
        openStore();
        m_store->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_relay->requests().size(), 1, 30000);
        fire();
        refresh(); // Returns at once.
        refresh();
        QCOMPARE(m_relay->requests().size(), 1);
        serve(document());
        m_relay->closeConnections(StandInAnswer::Ending::closeNotify);
        QTRY_VERIFY_WITH_TIMEOUT((refresh(), m_store->snapshot.value().has_value()), 30000);
    }

    void eachFiringOfTheTimerFetches() {
        serve(document());
        openStore();
        m_store->start();
        QTRY_VERIFY_WITH_TIMEOUT(m_store->snapshot.value(), 30000);
        for (int minute = 1; minute <= 3; ++minute) {
            serve(document(minute));
            fire();
            QTRY_COMPARE_WITH_TIMEOUT(m_store->snapshot.value()->generatedAt, document(minute).generatedAt, 30000);
        }
        QCOMPARE(m_store->findChildren<QTimer*>().size(), 2); // The other is Ethereum's.
    }

    void theStoreMayGoWhileAFetchRuns() {
        m_relay->on("/snapshot.json", StandInAnswer::ok(JSON::encode(document())).dripped(1, std::chrono::seconds(1)));
        openStore();
        m_store->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_relay->requests().size(), 1, 30000);
        m_store.reset();
        QTRY_COMPARE_WITH_TIMEOUT(m_relay->openConnectionCount(), 0, 30000);
    }

    void aManualRefreshAlwaysAsksTheRelay() {
        const StandInAnswer fresh = StandInAnswer::ok(JSON::encode(document()));
        m_relay->on("/snapshot.json", fresh.header("Cache-Control", "max-age=3600").header("ETag", "\"a\""));
        openStore();
        m_store->rescheduleTimers();
        refresh();
        const Announcements announced(*m_store);
        fire();
        QTRY_COMPARE_WITH_TIMEOUT(announced.snapshots, 1,
                                  30000); // From memory: the relay said that it stays good for an hour.
        QCOMPARE(m_relay->requests().size(), 1);
        refresh();
        QCOMPARE(m_relay->requests().size(), 2);
        QCOMPARE(m_relay->requests().last().header("If-None-Match"), QByteArray("\"a\""));
    }

    void aBodyIsDecodedOnTheWorkerWhileTheMainThreadGoesOn() {
        serve(document());
        openStore();
        logRequests(true);
        const auto silenceAgain = qScopeGuard([] { logRequests(false); });
        const LogLines log("org.velisk.Torvane.net");
        const auto gate = std::make_shared<QSemaphore>();
        worker().start([gate] { gate->acquire(); });
        const auto open = qScopeGuard([gate] { gate->release(); });
        const Task<> task = m_store->refresh();
        task.start();
        QTRY_COMPARE_WITH_TIMEOUT(log.lines().size(), 1, 30'000); // The body is there.
        int turns = 0;
        const RepeatingTimer loop(this, 0.001, 0, [&] { ++turns; });
        QTRY_VERIFY_WITH_TIMEOUT(turns >= 20, 30'000);
        QVERIFY(!task.isDone() && !m_store->snapshot.value());
        gate->release();
        QTRY_VERIFY_WITH_TIMEOUT(task.isDone(), 30'000);
        QVERIFY(m_store->snapshot.value());
    }

    void theSameBytesAreNotDecodedAgain() {
        serve(document());
        openStore();
        refresh();
        const Announcements announced(*m_store);
        const auto gate = std::make_shared<QSemaphore>();
        worker().start([gate] { gate->acquire(); });
        const auto open = qScopeGuard([gate] { gate->release(); });
        const Task<> task = m_store->refresh();
        task.start();
        QTRY_VERIFY_WITH_TIMEOUT(announced.snapshots >= 1, 30000); // While the worker is held up.
        gate->release();
        QTRY_VERIFY_WITH_TIMEOUT(task.isDone(), 30000);
    }

    void theRequestIsAGetOfTheDocument() {
        serve(document());
        openStore();
        refresh();
        const StandInRequest request = m_relay->requests().constFirst();
        QCOMPARE(request.method, QByteArray("GET"));
        QCOMPARE(request.target, QByteArray("/snapshot.json"));
        QCOMPARE(request.header("User-Agent"), QByteArray("torvane/0.3.0 (macOS)"));
    }
};

QTEST_GUILESS_MAIN(RelayPollingTest)
#include "RelayPollingTest.moc"

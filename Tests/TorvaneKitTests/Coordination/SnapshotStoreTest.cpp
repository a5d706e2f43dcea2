#include "Coordination/SnapshotStore.h"

#include "Model/Config.h"
#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/LogLines.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"

#include <QFile>
#include <QLoggingCategory>
#include <QScopeGuard>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace torvane;

namespace {

const QDateTime documentTime = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);

QDateTime laterThanTheDocument() {
    return documentTime.addSecs(100);
}

Snapshot document(int minutesLater = 0) {
    return SimulatedMarket::at(documentTime.addSecs(60 * minutesLater));
}

/// Counts what the store publishes. Nobody answers its live polls here, but each of them publishes all the same: one at
/// the end of each refresh.
struct Announcements {
    explicit Announcements(SnapshotStore& store) {
        store.snapshot.observe(&context, [this](const std::optional<Snapshot>&) { ++snapshots; });
        store.lastUpdated.observe(&context, [this](const std::optional<QDateTime>&) { ++times; });
    }

    QObject context;
    int snapshots = 0;
    int times = 0;
};

} // namespace

class SnapshotStoreTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        m_relay = std::make_unique<StandInServer>();
        TestConfig::setRelayHost(m_relay->host());
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_defaults = openDefaults();
        m_settings = std::make_unique<AppSettings>(*m_defaults);
        Clock::setSource(&laterThanTheDocument);
    }

    void cleanup() {
        m_store.reset();
        m_settings.reset();
        m_defaults.reset();
        worker().waitForDone(); // Nothing is written into a home that is being removed.
        Clock::setSource(nullptr);
    }

    void withoutACacheEverythingIsEmptyUntilTheFirstFetchSucceeds() {
        openStore();
        QVERIFY(!m_store->snapshot.value());
        QVERIFY(!m_store->lastUpdated.value());
        m_relay->on("/snapshot.json", StandInAnswer::status(503));
        m_store->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_relay->requests().size(), 1, 30000);
        refresh();
        QVERIFY(!m_store->snapshot.value());
        serve(document());
        QTRY_VERIFY_WITH_TIMEOUT((refresh(), m_store->snapshot.value().has_value()), 30000);
        QCOMPARE(m_store->snapshot.value()->generatedAt, document().generatedAt);
        QCOMPARE(m_store->lastUpdated.value(), documentTime);
    }

    void makingTheStoreAsksNobody() {
        serve(document());
        openStore();
        QCoreApplication::processEvents();
        QVERIFY(m_relay->requests().isEmpty());
        QVERIFY(m_store->findChildren<QTimer*>().isEmpty());
    }

    void startingReturnsBeforeTheFirstFetchBegins() {
        serve(document());
        openStore();
        m_store->start();
        QVERIFY(m_relay->requests().isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(m_store->snapshot.value(), 30000);
        QCOMPARE(m_relay->requests().size(), 1);
    }

    void aCachedDocumentIsShownAtOnce() {
        cache(JSON::encode(document()));
        openStore();
        QCOMPARE(m_store->snapshot.value()->gas.baseFee, document().gas.baseFee);
        QCOMPARE(m_store->lastUpdated.value(), documentTime);
    }

    void aCachedDocumentWithAnUnreadableStampHasNoTime() {
        Snapshot snapshot = document();
        snapshot.generatedAt = QStringLiteral("around noon");
        cache(JSON::encode(snapshot));
        openStore();
        QVERIFY(m_store->snapshot.value());
        QVERIFY(!m_store->lastUpdated.value());
    }

    void aFetchedDocumentWithAnUnreadableStampCountsAsCurrent() {
        Snapshot snapshot = document();
        snapshot.generatedAt = QStringLiteral("around noon");
        serve(snapshot);
        openStore();
        refresh();
        QCOMPARE(m_store->lastUpdated.value(), laterThanTheDocument());
    }

    void aDamagedCacheIsIgnoredAndStaysUntilTheNextGoodFetch() {
        const QByteArray damaged = JSON::encode(document()).chopped(1);
        cache(damaged);
        openStore();
        QVERIFY(!m_store->snapshot.value());
        QCOMPARE(cached(), damaged);
        serve(document());
        refresh();
        QTRY_COMPARE_WITH_TIMEOUT(cached(), JSON::encode(document()), 30000);
    }

    void theCacheHoldsTheBytesAsReceived() {
        const QByteArray spaced = JSON::encode(document()).replace("\":", "\" :  ") + "\n\n";
        m_relay->on("/snapshot.json", StandInAnswer::ok(spaced));
        openStore();
        refresh();
        QTRY_COMPARE_WITH_TIMEOUT(cached(), spaced, 30000);
    }

    void whatWasFetchedIsThereAtTheNextStart() {
        serve(document());
        openStore();
        refresh();
        QTRY_VERIFY_WITH_TIMEOUT(!cached().isEmpty(), 30000);
        m_store.reset();
        m_settings.reset();
        m_defaults = openDefaults();
        m_settings = std::make_unique<AppSettings>(*m_defaults);
        m_relay->stop();
        openStore();
        QCOMPARE(m_store->snapshot.value()->generatedAt, document().generatedAt);
    }

    void anUnchangedDocumentIsPublishedAgainButNotKeptAgain() {
        serve(document());
        openStore();
        m_store->rescheduleTimers();
        refresh();
        QTRY_VERIFY_WITH_TIMEOUT(!cached().isEmpty(), 30000);
        QVERIFY(QFile::remove(cachePath()));
        const QPointer<QTimer> timer = relayTimer();
        const Announcements announced(*m_store);
        refresh();
        QCOMPARE(announced.snapshots, 2);
        QCOMPARE(announced.times, 2);
        QVERIFY(timer);
        worker().waitForDone();
        QVERIFY(!QFile::exists(cachePath()));
    }

    void anUnchangedStampHidesAnyOtherChange() {
        serve(document());
        openStore();
        refresh();
        Snapshot other = document();
        other.gas.baseFee = 999;
        serve(other);
        refresh();
        QCOMPARE(m_store->snapshot.value()->gas.baseFee, document().gas.baseFee);
    }

    void aNewDocumentIsKeptPublishedAndRestartsTheMinute() {
        serve(document());
        openStore();
        m_store->rescheduleTimers();
        refresh();
        const QPointer<QTimer> timer = relayTimer();
        const Announcements announced(*m_store);
        serve(document(1));
        refresh();
        QCOMPARE(announced.snapshots, 3); // With what rebuilding the timers publishes.
        QCOMPARE(m_store->snapshot.value()->generatedAt, document(1).generatedAt);
        QCOMPARE(m_store->lastUpdated.value(), documentTime.addSecs(60));
        QVERIFY(!timer);
        QCOMPARE(relayTimer()->interval(), 60'000);
        QTRY_COMPARE_WITH_TIMEOUT(cached(), JSON::encode(document(1)), 30000);
    }

    void changesAreAnnouncedBeforeTheyTakeEffectWithTheNewValue() {
        serve(document());
        openStore();
        QStringList seen;
        connect(m_store.get(), &ObservableObject::objectWillChange, this, [&] { seen << QStringLiteral("object"); });
        m_store->snapshot.observe(this, [&](const std::optional<Snapshot>& next) {
            seen << (next && !m_store->snapshot.value() ? QStringLiteral("snapshot") : QStringLiteral("late"));
        });
        m_store->lastUpdated.observe(this, [&](const std::optional<QDateTime>& next) {
            seen << (next && !m_store->lastUpdated.value() ? QStringLiteral("time") : QStringLiteral("late"));
        });
        refresh();
        // Between the two, the block number is announced to be none.
        QCOMPARE(seen.first(5),
                 QStringList({QStringLiteral("object"), QStringLiteral("snapshot"), QStringLiteral("object"),
                              QStringLiteral("object"), QStringLiteral("time")}));
    }

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
        QCOMPARE(m_store->lastUpdated.value(), documentTime);
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
        QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=true"));
        const auto silenceAgain = qScopeGuard([this] { initTestCase(); });
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

    void theFollowedNetworkIsTheFirstOfItsNameInTheRelaysDocument() {
        Snapshot snapshot = document();
        snapshot.l2.append(snapshot.l2.at(2));
        snapshot.l2.last().tag = QStringLiteral("second");
        serve(snapshot);
        openStore();
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Base"));
        QVERIFY(!m_store->selectedL2()); // No document yet.
        refresh();
        QCOMPARE(m_store->selectedL2()->tag, QStringLiteral("BASE"));
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("base"));
        QVERIFY(!m_store->selectedL2());
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Atlantis"));
        QVERIFY(!m_store->selectedL2());
        m_settings->badgeChain = BadgeChain::ethereum();
        QVERIFY(!m_store->selectedL2());
    }

private:
    QString cachePath() const { return m_home->filePath(QStringLiteral("cache/cachedSnapshot")); }

    std::unique_ptr<UserDefaults> openDefaults() const {
        return std::make_unique<UserDefaults>(m_home->filePath(QStringLiteral("config/preferences.json")),
                                              m_home->filePath(QStringLiteral("cache")));
    }

    void openStore() { m_store = std::make_unique<SnapshotStore>(*m_settings, *m_defaults); }

    void cache(const QByteArray& bytes) {
        m_defaults->setData(QStringLiteral("cachedSnapshot"), bytes);
        worker().waitForDone();
    }

    QByteArray cached() const {
        QFile file(cachePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void serve(const Snapshot& snapshot) { m_relay->on("/snapshot.json", StandInAnswer::ok(JSON::encode(snapshot))); }

    void refresh() {
        const Task<> task = m_store->refresh();
        task.start();
        QTRY_VERIFY_WITH_TIMEOUT(task.isDone(), 60'000);
    }

    QTimer* relayTimer() const { return m_store->findChild<QTimer*>(); }

    /// As when a minute has passed.
    void fire() { QVERIFY(QMetaObject::invokeMethod(relayTimer(), "timeout")); }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<StandInServer> m_relay;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SnapshotStore> m_store;
};

QTEST_GUILESS_MAIN(SnapshotStoreTest)
#include "SnapshotStoreTest.moc"

#include "TorvaneKitTests/Coordination/RelayStoreFixture.h"

using namespace torvane;

/// What the store holds and publishes of the documents that it has.
class SnapshotStoreTest final : public RelayStoreFixture {
    Q_OBJECT

private Q_SLOTS:
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
        QCOMPARE(m_store->lastUpdated.value(), documentTime());
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
        QCOMPARE(m_store->lastUpdated.value(), documentTime());
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
        QCOMPARE(m_store->lastUpdated.value(), documentTime().addSecs(60));
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
};

QTEST_GUILESS_MAIN(SnapshotStoreTest)
#include "SnapshotStoreTest.moc"

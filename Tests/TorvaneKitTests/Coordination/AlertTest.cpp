#include "Coordination/Notifications.h"
#include "TorvaneKitTests/Coordination/LiveStoreFixture.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace torvane;

namespace {

struct Alert {
    double baseFee;
    qint64 threshold;
    bool sound;

    bool operator==(const Alert&) const = default;
};

QList<Alert> g_alerts;

QList<double> alertedFees() {
    QList<double> fees;
    for (const Alert& alert : g_alerts)
        fees.append(alert.baseFee);
    return fees;
}

} // namespace

/// These stand in for the kit's own at the linker: what the store tells the notifier is kept here.
void GasNotifier::requestAuthorization() {}

void GasNotifier::fireCheapGas(double baseFee, qint64 threshold, bool sound) {
    g_alerts.append({baseFee, threshold, sound});
}

class AlertTest final : public LiveStoreFixture {
    Q_OBJECT

    void prepare() override {
        g_alerts.clear();
        m_live->settings.alertEnabled = true;
        m_live->settings.alert = 10;
        m_live->serve(documentAt(50));
    }

    Snapshot documentAt(double baseFee) const {
        Snapshot snapshot = m_live->document();
        snapshot.gas.baseFee = baseFee;
        return snapshot;
    }

    /// Nodes answer with this base fee from now on, and the store asks them.
    void baseFeeBecomes(double gwei) {
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(static_cast<quint64>(std::llround(gwei * 1e9)))));
        m_live->pollEthereum();
    }

private Q_SLOTS:
    void eachDropBelowTheThresholdIsToldOnce() {
        m_live->openAndRefresh(); // At 12.
        for (const double fee : {9, 8, 11, 7})
            baseFeeBecomes(fee);
        QCOMPARE(alertedFees(), QList<double>({9, 7}));
    }

    void theThresholdItselfIsNotBelowAndArmsAgain() {
        m_live->openAndRefresh();
        for (const double fee : {10.0, 9.999999999, 10.0, 9.5})
            baseFeeBecomes(fee);
        QCOMPARE(alertedFees(), QList<double>({9.999999999, 9.5}));
    }

    void whatIsToldIsTheFeeTheThresholdAndTheSound() {
        m_live->openAndRefresh();
        m_live->settings.alert = 25;
        m_live->settings.sound = true;
        baseFeeBecomes(24.5);
        QCOMPARE(g_alerts, QList<Alert>({{24.5, 25, true}}));
    }

    void aCachedSnapshotBelowTheThresholdIsToldAtTheStart() {
        m_live->cache(documentAt(9));
        m_live->open();
        QVERIFY(g_alerts.isEmpty());
        m_live->store->start();
        QCOMPARE(alertedFees(), QList<double>({9})); // Before anything was fetched.
        QVERIFY(m_live->server.requests().isEmpty());
    }

    void withoutASnapshotNothingIsTold() {
        m_live->server.on("/snapshot.json", StandInAnswer::status(503));
        m_live->server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(1)));
        m_live->open();
        m_live->store->start();
        QTRY_VERIFY_WITH_TIMEOUT(m_live->store->ethereumBlockNumber.value().has_value(), 30'000);
        QVERIFY(g_alerts.isEmpty());
        m_live->serve(documentAt(50));
        m_live->refresh(); // Still armed.
        QCOMPARE(alertedFees(), QList<double>({1e-9}));
    }

    void aFreshLiveFeeOutweighsTheRelays() {
        m_live->serve(documentAt(5));
        m_live->open();
        m_live->store->rescheduleTimers();
        await(m_live->store->refresh());
        QCOMPARE(alertedFees(), QList<double>({5})); // The relay's came first.
        baseFeeBecomes(12);
        m_live->server.on("/ethereum", StandInAnswer::status(503));
        m_live->pollEthereum();
        QCOMPARE(g_alerts.size(), 1);
        m_live->setTime(61); // The live one is too old: it is 5 again.
        m_live->pollEthereum();
        QCOMPARE(alertedFees(), QList<double>({5, 5}));
    }

    void switchedOffNothingIsToldAndNothingArmed() {
        m_live->openAndRefresh();
        baseFeeBecomes(9);
        m_live->settings.alertEnabled = false;
        baseFeeBecomes(12); // Not seen by the alert.
        baseFeeBecomes(9);
        m_live->settings.alertEnabled = true;
        m_live->pollEthereum();
        QCOMPARE(alertedFees(), QList<double>({9}));
        baseFeeBecomes(10);
        baseFeeBecomes(8);
        QCOMPARE(alertedFees(), QList<double>({9, 8}));
    }

    void switchedOnItTellsAtTheNextPollAndNotBefore() {
        m_live->settings.alertEnabled = false;
        m_live->openAndRefresh();
        baseFeeBecomes(9);
        m_live->settings.alertEnabled = true;
        QVERIFY(g_alerts.isEmpty());
        m_live->pollEthereum();
        QCOMPARE(alertedFees(), QList<double>({9}));
    }

    void aNewThresholdCountsFromTheNextPollOfAnyKind() {
        m_live->openAndRefresh();
        m_live->settings.alert = 13;
        QVERIFY(g_alerts.isEmpty());
        m_live->settings.badgeChain = BadgeChain::l2(QStringLiteral("Base"));
        m_live->store->rescheduleTimers();
        QVERIFY(g_alerts.isEmpty());
        m_live->pollL2();
        QCOMPARE(g_alerts, QList<Alert>({{12, 13, false}}));
    }

    void anUnchangedDocumentIsEvaluatedToo() {
        m_live->openAndRefresh();
        m_live->settings.alert = 13;
        m_live->server.on("/ethereum", StandInAnswer::silent());
        m_live->fire(0);
        QTRY_COMPARE_WITH_TIMEOUT(alertedFees(), QList<double>({12}), 30'000);
    }

    void anyThresholdIsTaken_data() {
        QTest::addColumn<qint64>("threshold");
        QTest::addColumn<int>("alerts");
        QTest::newRow("zero") << qint64{0} << 0;
        QTest::newRow("negative") << qint64{-5} << 0;
        QTest::newRow("largest") << std::numeric_limits<qint64>::max() << 1;
        QTest::newRow("smallest") << std::numeric_limits<qint64>::min() << 0;
    }

    void anyThresholdIsTaken() {
        QFETCH(qint64, threshold);
        m_live->settings.alert = threshold;
        m_live->openAndRefresh();
        baseFeeBecomes(0.001);
        QTEST(static_cast<int>(g_alerts.size()), "alerts");
    }
};

QTEST_GUILESS_MAIN(AlertTest)
#include "AlertTest.moc"

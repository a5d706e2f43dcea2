#include "TimerSettings.h"

#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/TemporaryHome.h"

#include <QPointer>
#include <QTest>
#include <QTimer>

using namespace torvane;

class TimerSettingsTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SnapshotStore> m_store;

    int ethereumInterval() const { return m_store->findChildren<QTimer*>()[1]->interval(); }

    /// How often the timers are rebuilt by what this does and by what it leaves in the loop's queue.
    template <class Change>
    int rebuildsDuring(Change change) {
        int rebuilds = 0;
        QObject context;
        m_store->snapshot.observe(&context, [&rebuilds](const std::optional<Snapshot>&) { ++rebuilds; });
        change();
        QCoreApplication::processEvents();
        return rebuilds;
    }

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<TemporaryHome>();
        m_defaults = std::make_unique<UserDefaults>(m_home->filePath(QStringLiteral("preferences.json")),
                                                    m_home->filePath(QStringLiteral("cache")));
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);
        m_defaults->setData(QStringLiteral("cachedSnapshot"), JSON::encode(SimulatedMarket::at(time)));
        worker().waitForDone();
        m_settings = std::make_unique<AppSettings>(*m_defaults);
        m_store = std::make_unique<SnapshotStore>(*m_settings, *m_defaults);
        m_store->rescheduleTimers();
        rebuildTimersOnChange(*m_settings, *m_store);
    }

    void cleanup() {
        m_store.reset();
        m_settings.reset();
        m_defaults.reset();
    }

    void anotherCadenceRebuildsTheTimersOnceItIsInEffect() {
        QCOMPARE(ethereumInterval(), 12'000);
        QCOMPARE(rebuildsDuring([this] { m_settings->liveCadence = LiveGasCadence::thirty; }), 1);
        QCOMPARE(ethereumInterval(), 30'000);
    }

    void anotherNetworkRebuildsTheTimers() {
        QCOMPARE(rebuildsDuring([this] { m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Base")); }), 1);
        QCOMPARE(m_store->selectedL2()->name, QStringLiteral("Base"));
    }

    void theSameValueAgainDoesNothing() {
        m_settings->liveCadence = LiveGasCadence::thirty;
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Base"));
        QCoreApplication::processEvents();
        const QPointer<QTimer> timer = m_store->findChildren<QTimer*>()[1];
        const auto again = [this] {
            m_settings->liveCadence = LiveGasCadence::thirty;
            m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Base"));
        };
        QCOMPARE(rebuildsDuring(again), 0);
        QVERIFY(timer);
    }

    void otherSettingsDoNothing() {
        const auto others = [this] {
            m_settings->alertEnabled = true;
            m_settings->denom = Denomination::usd;
            m_settings->badgeSource = BadgeSource::high;
        };
        QCOMPARE(rebuildsDuring(others), 0);
    }

    void aStoreThatIsGoneIsNotCalled() {
        m_settings->liveCadence = LiveGasCadence::thirty;
        m_store.reset();
        m_settings->liveCadence = LiveGasCadence::sixty;
        QCoreApplication::processEvents();
        QVERIFY(!m_store);
    }
};

QTEST_GUILESS_MAIN(TimerSettingsTest)
#include "TimerSettingsTest.moc"

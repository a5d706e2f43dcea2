#pragma once

#include "Coordination/SnapshotStore.h"
#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInServer.h"
#include "Support/TemporaryHome.h"
#include "Support/TestConfig.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTest>
#include <QTimer>

namespace torvane {

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

/// What the tests of a store and its relay have in common: a new home and a new relay for each function.
class RelayStoreFixture : public QObject {
    Q_OBJECT

protected:
    static QDateTime documentTime() { return QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC); }
    static QDateTime laterThanTheDocument() { return documentTime().addSecs(100); }

    static void logRequests(bool isOn) {
        QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=") +
                                         (isOn ? QStringLiteral("true") : QStringLiteral("false")));
    }

    static Snapshot document(int minutesLater = 0) {
        return SimulatedMarket::at(documentTime().addSecs(60 * minutesLater));
    }

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

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<StandInServer> m_relay;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SnapshotStore> m_store;

private Q_SLOTS:
    void initTestCase() { logRequests(false); }

    void init() {
        m_home = std::make_unique<TemporaryHome>();
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
        Clock::setSource(nullptr);
    }
};

} // namespace torvane

#include "LocalService.h"

#include "StandInWorld.h"
#include "Support/Clock.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

using namespace torvane;

namespace {

constexpr int limitMs = 120'000;

QDateTime g_now;

QDateTime now() {
    return g_now;
}

} // namespace

/// When a relay of one's own makes its runs.
class LocalServiceTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<StandInWorld> m_world;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<LocalService> m_service;
    QStringList m_runs; // The last line of each.

    /// Its own certificate, and the nodes' authority beside it.
    void makeCertificate() const {
        const QByteArray authority = TestFiles::contentOf(StandInServer::certificatePath("ca"));
        const QString path = m_directory->filePath(QStringLiteral("relay.pem"));
        ServerCertificate::at(path, QStringLiteral("localhost"));
        TestFiles::put(path, TestFiles::contentOf(path) + authority);
        TestConfig::setTrustAnchorPath(path);
    }

    void start() {
        Options options;
        options.host = QStringLiteral("localhost");
        const auto note = [this](const QString& line) {
            if (line.startsWith(QLatin1String("Wrote ")) || line.startsWith(QLatin1String("Nothing written: ")))
                m_runs.append(line);
        };
        RelayTable table = m_world->table();
        table.networks.clear();
        m_service = std::make_unique<LocalService>(table, options, note);
        waitForRuns(1);
    }

    void waitForRuns(int count) const {
        QTRY_COMPARE_WITH_TIMEOUT(m_runs.size(), count, limitMs);
        for (int turn = 0; turn < 20; ++turn)
            QCoreApplication::processEvents();
        QCOMPARE(m_runs.size(), count);
    }

    /// The machine sleeps so long, and its timers stand still.
    void sleepFor(int seconds) {
        g_now = g_now.addSecs(seconds);
        m_world->chain(QStringLiteral("Ethereum"))
            .always(QStringLiteral("eth_getBlockByNumber latest"), blockAt(1146, g_now.toSecsSinceEpoch()));
        m_service->catchUp();
    }

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        m_world = std::make_unique<StandInWorld>();
        g_now = StandInWorld::now();
        Clock::setSource(&now);
        m_directory = std::make_unique<QTemporaryDir>();
        m_runs.clear();
        makeCertificate();
    }

    void cleanup() {
        m_service.reset();
        Clock::setSource(nullptr);
    }

    void aRunThatWasSleptThroughIsMadeSoonAfter() {
        start();
        QVERIFY2(m_runs.last().startsWith(QLatin1String("Wrote ")), qPrintable(m_runs.last()));
        sleepFor(299);
        waitForRuns(1);
        sleepFor(3600);
        waitForRuns(2);
        QVERIFY(m_runs.last().startsWith(QLatin1String("Wrote ")));
        m_service->catchUp(); // The next one is due in five minutes again.
        waitForRuns(2);
    }

    void noSecondRunBeginsWhileOneIsUnderWay() {
        start();
        sleepFor(1800);
        sleepFor(1800);
        waitForRuns(2);
    }

    void aRunThatFailedIsMadeAgainAMinuteLater() {
        m_world->chain(QStringLiteral("Ethereum")).server().stop();
        start();
        QVERIFY(m_runs.last().startsWith(QLatin1String("Nothing written: ")));
        m_world->chain(QStringLiteral("Ethereum")).server().start();
        sleepFor(59);
        waitForRuns(1);
        sleepFor(1);
        waitForRuns(2);
        QVERIFY2(m_runs.last().startsWith(QLatin1String("Wrote ")), qPrintable(m_runs.last()));
    }

    void aClockThatIsSetBackAndRightAgainCostsNoRun() {
        start();
        sleepFor(-3600);
        waitForRuns(1);
        sleepFor(3600 + 300);
        waitForRuns(2);
    }
};

QTEST_GUILESS_MAIN(LocalServiceTest)
#include "LocalServiceTest.moc"

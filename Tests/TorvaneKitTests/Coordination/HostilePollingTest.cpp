#include "Chain/NetworkClient.h"
#include "Chain/NetworkLimits.h"
#include "Coordination/SnapshotStore.h"
#include "HostileAnswers.h"
#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/RPCAnswers.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer's allocator counts for itself; g++ 12 comes without the header of this.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

using namespace torvane;

namespace {

using namespace std::chrono_literals;

constexpr unsigned seed = 20261;
constexpr int warmUpRounds = 25;
const QString followedName = QStringLiteral("Base");
const QDateTime documentTime = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);

QDateTime soonAfterTheDocument() {
    return documentTime.addSecs(10);
}

/// How long the servers are hostile: for so many rounds, and in the long proof for an hour of polls one after the
/// other.
struct Span {
    int leastRounds = 100;
    QDeadlineTimer end{qEnvironmentVariableIsSet("TORVANE_SOAK") ? std::chrono::milliseconds(1h) : 0ms};

    bool isOver(int round) const { return round >= leastRounds && end.hasExpired(); }
};

/// Bytes that are allocated and not freed.
qint64 heapBytes() {
#if defined(__SANITIZE_ADDRESS__)
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
#endif
}

qint64 openDescriptors() {
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

struct Holdings {
    qint64 heap = heapBytes();
    qint64 descriptors = openDescriptors();
};

} // namespace

/// The store's three polls against servers that misbehave in every way, in an order that chance decides.
class HostilePollingTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false"));
        Clock::setSource(&soonAfterTheDocument); // Quotes stay fresh, so that what is shown is what came last.
        TestConfig::setRelayHost(m_server.host());
        TestConfig::setEthereumRPCURLs(m_server.url(QStringLiteral("/primary")).toString(),
                                       m_server.url(QStringLiteral("/fallback")).toString());
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        for (const char* path : {"/snapshot.json", "/primary", "/fallback", "/network"})
            m_server.on(path, [this](const StandInRequest& request) { return answer(request); });
        m_settings.alertEnabled = false;
        m_settings.badgeChain = BadgeChain::l2(followedName);
    }

    void nothingIsHeldOrLostOverManyHostilePolls() {
        beGood();
        hostileRounds({warmUpRounds, QDeadlineTimer(0)});
        beGood();
        const Holdings before;
        const int rounds = hostileRounds({});
        // All three polls bring new figures at once: no mark of a poll in flight was left behind.
        beGood();
        const Holdings after;
        qInfo("%d rounds, %llu requests: heap %+lld bytes, descriptors %+lld", rounds, m_served,
              after.heap - before.heap, after.descriptors - before.descriptors);
        QVERIFY(after.heap - before.heap < 128 * 1024 + 200LL * std::min(rounds, 2000));
        QVERIFY(after.descriptors - before.descriptors < 8);
    }

    void theLastGoodFiguresStayWhileEverythingFails() {
        beGood();
        const QByteArray before = JSON::encode(*m_store.snapshot.value());
        const auto block = m_store.ethereumBlockNumber.value();
        NetworkLimits::totalDeadline = 150ms; // As above; a drip would bring it all in time.
        m_goodness = 0;
        for (int round = 0; round < 20; ++round)
            refresh();
        QCOMPARE(JSON::encode(*m_store.snapshot.value()), before);
        QCOMPARE(m_store.ethereumBlockNumber.value(), block);
    }

private:
    /// The figures of the answers so far are whole numbers that only grow, so that each tells when it was served.
    QByteArray goodBody(const QByteArray& path) {
        ++m_served;
        if (path == "/network")
            return HostileAnswers::gasPrice(m_served);
        if (path != "/snapshot.json")
            return HostileAnswers::feeHistory(m_served);
        Snapshot document = SimulatedMarket::at(documentTime);
        // Another document each time; its figures are older than any live quote's.
        document.generatedAt = documentTime.addSecs(static_cast<qint64>(m_served)).toString(Qt::ISODate);
        document.gas.baseFee = 0;
        for (L2Entry& entry : document.l2)
            entry.rpc = {m_server.url(QStringLiteral("/network")).toString()};
        return JSON::encode(document);
    }

    /// Good as often as told, in percent, and otherwise spoiled.
    StandInAnswer answer(const StandInRequest& request) {
        const QByteArray body = goodBody(request.target);
        if (static_cast<int>(m_random() % 100) < m_goodness)
            return StandInAnswer::ok(body);
        const bool isNetwork = request.target == "/network";
        return HostileAnswers::spoiled(body, isNetwork ? m_badGasPrices : m_badFeeHistories, m_random);
    }

    /// All answers are good, and all three figures arrive.
    void beGood() {
        NetworkLimits::totalDeadline = 60s;
        m_goodness = 100;
        m_server.closeConnections(StandInAnswer::Ending::reset);
        NetworkClient::dropPooledConnections();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnectionCount(), 0, 30000);
        for (int round = 0; round < 3; ++round) {
            const quint64 served = m_served;
            refresh();
            QCOMPARE(m_served, served + 3); // The relay, Ethereum's first node, the network's.
            QVERIFY(m_store.snapshot.value()->gas.baseFee > static_cast<double>(served));
            QVERIFY(*followed().costGwei > static_cast<double>(served));
        }
    }

    /// The number of rounds that it came to.
    int hostileRounds(const Span& span) {
        NetworkLimits::totalDeadline = 150ms; // What stalls or drips need not take its minute.
        m_goodness = 20;
        int round = 0;
        for (; !span.isOver(round) && !QTest::currentTestFailed(); ++round)
            hostileRound(round);
        return round;
    }

    /// What is shown is of one answer, and of none before the last one's.
    void hostileRound(int round) {
        const double latest = m_store.snapshot.value()->gas.baseFee;
        if (round % 16 == 15)
            m_server.stop();
        refresh();
        if (round % 16 == 15)
            m_server.start();
        const GasData& gas = m_store.snapshot.value()->gas;
        QVERIFY(gas.baseFee >= latest);
        QCOMPARE(gas.low, gas.baseFee + 1);
        QCOMPARE(gas.avg, gas.baseFee + 2);
        QCOMPARE(gas.high, gas.baseFee + 3);
    }

    void refresh() {
        const Task<> task = m_store.refresh();
        task.start();
        QTRY_VERIFY_WITH_TIMEOUT(task.isDone(), 60000);
        m_server.clearRequests();
        // A new document makes new timers; here only the refreshes ask.
        for (QTimer* timer : m_store.findChildren<QTimer*>())
            timer->stop();
    }

    L2Entry followed() const {
        const QList<L2Entry>& l2 = m_store.snapshot.value()->l2;
        return *std::find_if(l2.cbegin(), l2.cend(), [](const L2Entry& each) { return each.name == followedName; });
    }

    QTemporaryDir m_home;
    UserDefaults m_defaults{m_home.filePath(QStringLiteral("preferences.json")), m_home.path()};
    AppSettings m_settings{m_defaults};
    SnapshotStore m_store{m_settings, m_defaults};
    StandInServer m_server;
    const QList<std::pair<const char*, QByteArray>> m_badFeeHistories = RPCAnswers::badFeeHistories();
    const QList<std::pair<const char*, QByteArray>> m_badGasPrices = RPCAnswers::badGasPrices();
    std::mt19937 m_random{seed};
    quint64 m_served = 0;
    int m_goodness = 100;
};

QTEST_GUILESS_MAIN(HostilePollingTest)
#include "HostilePollingTest.moc"

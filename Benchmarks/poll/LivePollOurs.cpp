// Polls the Ethereum node again and again as the program does: through the store, from the request to the published
// snapshot and to the badge that compares its look. LivePollOurs URL COUNT
#include "Badge/BadgeFeed.h"
#include "Coordination/SnapshotStore.h"
#include "PollMeasure.h"
#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInServer.h"
#include "Support/TestConfig.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QTcpServer>
#include <QTemporaryDir>

#include <csignal>
#include <utility>

using namespace torvane;

namespace {

class Polls final : public QObject {
    Q_OBJECT

public:
    Polls(const QString& home, std::size_t count)
        : m_defaults(home + QStringLiteral("/preferences.json"), home)
        , m_store(m_settings, m_defaults)
        , m_count(count) {
        connect(&m_feed, &BadgeFeed::lookChanged, this, &Polls::compareBadge);
    }

    void start() {
        // The relay never answers the first refresh, so that every further one asks the node alone.
        m_tasks.run(m_store.refresh());
        m_tasks.run(poll());
    }

private:
    Task<> poll() {
        Task<> refresh = m_store.refresh();
        co_await refresh;
        // Queued behind the badge's comparison.
        QMetaObject::invokeMethod(this, &Polls::next, Qt::QueuedConnection);
    }

    void next() {
        if (!m_store.ethereumBlockNumber.value() || !m_store.snapshot.value() || !std::exchange(m_isCompared, false)) {
            std::fprintf(stderr, "The poll brought no figures\n");
            QCoreApplication::exit(1);
            return;
        }
        m_measure.count();
        if (m_measure.counted() <= m_count)
            return m_tasks.run(poll());
        m_measure.print();
        QCoreApplication::quit();
    }

    /// As the badge does.
    void compareBadge(const BadgeLook& look) {
        m_isCompared = true;
        if (look == m_look)
            return;
        m_look = look;
        ++m_changes;
    }

    UserDefaults m_defaults;
    AppSettings m_settings{m_defaults};
    SnapshotStore m_store;
    BadgeFeed m_feed{m_store, m_settings};
    std::size_t m_count;
    PollMeasure m_measure;
    BadgeLook m_look;
    int m_changes = 0;
    bool m_isCompared = false;
    TaskScope m_tasks;
};

/// A start finds a document of the usual size: Ethereum and nine networks with their histories.
void cacheDocument(const QString& home) {
    QFile file(home + QStringLiteral("/cachedSnapshot"));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(JSON::encode(SimulatedMarket::at(QDateTime::currentDateTimeUtc()))) < 0 || !file.flush())
        qFatal("The cache cannot be written");
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN); // As the program does.
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(
        QStringLiteral("org.velisk.Torvane.net.info=false")); // The yardstick logs nothing.
    const QString endpoint = app.arguments().at(1);
    QTcpServer silentRelay;
    silentRelay.listen(QHostAddress::LocalHost);
    TestConfig::setRelayHost(QStringLiteral("localhost:") +
                             QLatin1StringView(QByteArray::number(silentRelay.serverPort())));
    TestConfig::setEthereumRPCURLs(endpoint, endpoint);
    TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
    const QTemporaryDir home;
    cacheDocument(home.path());
    Polls polls(home.path(), app.arguments().at(2).toULong());
    QMetaObject::invokeMethod(&polls, &Polls::start, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

#include "LivePollOurs.moc"

#include "LocalService.h"

#include "Chain/NetworkClient.h"
#include "Model/Config.h"
#include "Support/Clock.h"
#include "Support/SafeFile.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>

namespace torvane {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds afterFailure = std::chrono::minutes(1); // A network that was away comes back soon.

/// Beside the certificate, unless another place is wanted.
QString documentPath(const Options& options) {
    if (!options.document.isEmpty())
        return options.document;
    return QFileInfo(Config::trustAnchorPath()).path() + QStringLiteral("/snapshot.json");
}

} // namespace

LocalService::LocalService(const RelayTable& table, const Options& options, const Relay::Say& say)
    : m_relay(table, documentPath(options), say)
    , m_server(ServerCertificate::at(Config::trustAnchorPath(), options.host), options.host, options.port)
    , m_betweenRuns(static_cast<qint64>(table.minutesBetweenRuns * 60'000)) {
    QUrl address = Config::snapshotURL();
    address.setHost(options.host);
    address.setPort(m_server.port());
    say(QStringLiteral("Serving ") + address.toString());
    if (address != Config::snapshotURL())
        say(QStringLiteral("This build's velisk asks another address, ") + Config::snapshotURL().toString());
    serveEarlier(documentPath(options));
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { m_runs.run(run()); });
    // It tells of nothing while the machine sleeps, and of a sleep within a minute after it.
    m_watch.setTimerType(Qt::VeryCoarseTimer);
    QObject::connect(&m_watch, &QTimer::timeout, &m_watch, [this] { catchUp(); });
    m_watch.start(std::chrono::minutes(1));
    m_runs.run(run());
}

void LocalService::catchUp() {
    if (!m_timer.isActive() || Clock::now() < m_due)
        return;
    m_timer.stop();
    m_runs.run(run());
}

void LocalService::waitForNext(milliseconds wait) {
    m_due = Clock::now().addMSecs(wait.count());
    m_timer.start(wait);
}

void LocalService::serveEarlier(const QString& document) {
    if (readEarlierDocument(document).snapshot)
        m_server.serve(SafeFile::read(document, relayBodyLimit).bytes);
}

/// Runs keep their distance from start to start, since histories take their points for equally far apart.
Task<> LocalService::run() {
    const QDeadlineTimer next(m_betweenRuns);
    Task<std::optional<QByteArray>> relaying = m_relay.run();
    const std::optional<QByteArray> document = co_await relaying;
    if (document)
        m_server.serve(*document);
    const milliseconds rest(next.remainingTime());
    waitForNext(document ? rest : std::min(afterFailure, m_betweenRuns));
}

} // namespace torvane

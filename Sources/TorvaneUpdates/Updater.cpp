#include "TorvaneUpdates/Updater.h"

#include "Support/Clock.h"
#include "TorvaneUpdates/Installation.h"
#include "TorvaneUpdates/UpdateSession.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace torvane::Updates {

namespace {

using namespace std::chrono_literals;

/// As long as a timer can be; it is looked again then.
constexpr std::chrono::milliseconds longestWait{std::numeric_limits<int>::max()};

} // namespace

Updater::Updater(Properties properties, UserDefaults& defaults, Download& download, Windows& windows, Relaunch relaunch)
    : m_properties(std::move(properties))
    , m_memory(defaults)
    , m_download(download)
    , m_windows(windows)
    , m_relaunch(std::move(relaunch)) {
    m_nextCheck.setSingleShot(true);
    connect(&m_nextCheck, &QTimer::timeout, this, &Updater::checkIfDue);
}

Updater::~Updater() = default;

void Updater::start() {
    if (!m_properties.publicKey.isEmpty())
        m_tasks.run(prepare());
}

Task<> Updater::prepare() {
    const auto look = [path = m_properties.executable, text = m_properties.publicKey] {
        const Executable executable = Executable::at(path);
        Installation::removeLeftOvers(executable);
        return std::pair(executable, PublicKey::fromBase64(text));
    };
    const std::pair<Executable, std::optional<PublicKey>> found = co_await detached(look);
    m_executable = found.first;
    m_key = found.second;
    if (!m_key)
        co_return;
    canCheckForUpdates = true;
    schedule(m_properties.settling);
}

void Updater::checkForUpdates() {
    if (!m_key)
        return;
    if (m_session) {
        m_session->comeForward();
        return;
    }
    makeSession();
    m_session->comeForward(); // First: what fails at once is to be seen.
    m_session->begin();
}

bool Updater::automaticallyChecksForUpdates() const {
    return m_memory.checksByItself();
}

void Updater::setAutomaticallyChecksForUpdates(bool automatic) {
    m_memory.setChecksByItself(automatic);
    if (!automatic && m_session && m_session->isSilent())
        m_session->giveUp();
    else
        schedule(0ms);
}

void Updater::catchUp() {
    // A check that is about to be made keeps its moment. What is left of it is no measure: a coarse timer may begin
    // with more than it was given.
    if (!m_nextCheck.isActive() || m_nextCheck.intervalAsDuration() > m_properties.settling)
        schedule(m_properties.settling);
}

void Updater::tryAgain() {
    m_hasNetworkChanged = true;
    if (m_session || !automaticallyChecksForUpdates() || !std::exchange(m_mayTryAgain, false))
        return;
    makeSession();
    m_isSecondTry = true;
    m_session->begin();
}

void Updater::schedule(std::chrono::milliseconds soonest) {
    m_nextCheck.stop();
    if (!m_key || m_session || !automaticallyChecksForUpdates())
        return;
    const std::chrono::milliseconds wait = m_memory.untilNextCheck(Clock::now(), m_properties.interval);
    m_nextCheck.setTimerType(wait > 1min ? Qt::VeryCoarseTimer : Qt::CoarseTimer);
    m_nextCheck.start(std::min(std::max(wait, soonest), longestWait));
}

void Updater::checkIfDue() {
    const bool mayCheck = m_key && !m_session && automaticallyChecksForUpdates();
    if (!mayCheck || m_memory.untilNextCheck(Clock::now(), m_properties.interval) != 0ms) {
        schedule(0ms);
        return;
    }
    makeSession();
    m_session->begin();
}

void Updater::makeSession() {
    m_nextCheck.stop();
    m_memory.noteCheck(Clock::now());
    canCheckForUpdates = false;
    m_mayTryAgain = false;
    m_isSecondTry = false;
    m_hasNetworkChanged = false;
    m_session = std::make_unique<UpdateSession>(
        SessionContext{m_properties, *m_key, m_executable, m_memory, m_download, m_windows, m_relaunch});
    connect(m_session.get(), &UpdateSession::ended, this, &Updater::endSession);
    connect(m_session.get(), &UpdateSession::replaced, this, &Updater::replaced);
}

void Updater::endSession() {
    m_mayTryAgain = m_session->hasMissedFeed() && !m_isSecondTry;
    m_session.release()->deleteLater(); // It may be what calls here.
    // Its window may have stood open for days: what it showed is not shown again at once.
    if (m_memory.untilNextCheck(Clock::now(), m_properties.interval) == 0ms)
        m_memory.noteCheck(Clock::now());
    canCheckForUpdates = true;
    schedule(0ms);
    if (m_hasNetworkChanged) // It asked by the old one.
        tryAgain();
}

} // namespace torvane::Updates

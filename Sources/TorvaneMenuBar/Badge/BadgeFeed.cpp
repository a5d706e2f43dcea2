#include "Badge/BadgeFeed.h"

#include "Support/Clock.h"

#include <algorithm>
#include <limits>

namespace torvane {

namespace {

/// A stamp from the far future is awaited in several rounds: a timer holds 24.8 days.
constexpr qint64 longestMs = std::numeric_limits<int>::max();

} // namespace

BadgeFeed::BadgeFeed(const SnapshotStore& store, const AppSettings& settings)
    : m_store(store)
    , m_settings(settings) {
    connect(&store, &ObservableObject::objectWillChange, this, &BadgeFeed::lookAgain);
    connect(&settings, &ObservableObject::objectWillChange, this, &BadgeFeed::lookAgain);
    m_age.setSingleShot(true);
    connect(&m_age, &QTimer::timeout, this, &BadgeFeed::announce);
    awaitAge();
}

BadgeLook BadgeFeed::look() const {
    return badgeLook(m_store.snapshot, m_store.lastUpdated, m_settings, Clock::now());
}

void BadgeFeed::follow(const Theme& theme) {
    connect(&theme, &Theme::appearanceChanged, this, &BadgeFeed::lookAgain);
}

/// Changes are announced before they take effect, and many at a time: the badge looks once, after all of them.
void BadgeFeed::lookAgain() {
    if (m_isStale)
        return;
    m_isStale = true;
    QMetaObject::invokeMethod(this, &BadgeFeed::announce, Qt::QueuedConnection);
}

void BadgeFeed::announce() {
    m_isStale = false;
    Q_EMIT lookChanged(look());
    awaitAge();
}

void BadgeFeed::awaitAge() {
    m_age.stop();
    const std::optional<QDateTime>& lastUpdated = m_store.lastUpdated;
    const QDateTime now = Clock::now();
    const std::optional<QDateTime> next = lastUpdated ? nextAge(*lastUpdated, now) : std::nullopt;
    // A timer that fires early, as coarse ones may, is set anew.
    if (next)
        m_age.start(static_cast<int>(std::min(now.msecsTo(*next), longestMs)));
}

} // namespace torvane

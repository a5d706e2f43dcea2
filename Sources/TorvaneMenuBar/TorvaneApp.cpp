#include "TorvaneApp.h"

#include "Chain/NetworkClient.h"
#include "Coordination/Notifications.h"
#include "Model/Config.h"
#include "Support/FreedMemory.h"
#include "Support/Notice.h"
#include "TimerSettings.h"
#include "Views/PopoverView.h"

#include <QCoreApplication>

#include <chrono>
#include <utility>

namespace torvane {

namespace {

/// By then the badge is in the panel and the first figures are there.
constexpr std::chrono::seconds rehearsalDelay{1};

using namespace std::chrono_literals;

/// A panel that is there takes the badge in a fraction of it.
constexpr std::chrono::milliseconds patienceForBadge = 500ms;

/// At login, panels take some seconds to appear.
constexpr std::chrono::milliseconds patienceForPanels = 10s;

std::optional<Appearance> appearance(ColorPreference preference) {
    if (preference == ColorPreference::none)
        return std::nullopt;
    return preference == ColorPreference::dark ? Appearance::dark : Appearance::light;
}

/// The program's own file, of the build's feed, key and version.
Updates::Properties updateProperties(const QString& id) {
    return {
        .feed = Config::appcastURL(),
        .publicKey = Config::updatePublicKey(),
        .product = id,
        .version = Config::currentVersion(),
        .executable = QCoreApplication::applicationFilePath(),
    };
}

} // namespace

TorvaneApp::TorvaneApp(const QString& id, Updates::Relaunch relaunch)
    : m_updater(updateProperties(id), m_defaults, m_updateDownload, std::move(relaunch))
    , m_popover([this] { return makePopoverView(); }) {
    GasNotifier::requestAuthorization();
    rebuildTimersOnChange(m_settings, m_store);
    connect(&m_systemChanges, &SystemChanges::timeJumped, &m_store, &SnapshotStore::catchUp);
    connect(&m_systemChanges, &SystemChanges::timeJumped, &m_updater, &SparkleUpdater::catchUp);
    connect(&m_systemChanges, &SystemChanges::timeJumped, &m_feed, &BadgeFeed::lookAgain);
    connect(&m_updater, &SparkleUpdater::replaced, this, &QCoreApplication::quit);
    connect(&m_updater, &SparkleUpdater::aboutToCheck, &m_popover, &Popover::close);
    connect(&m_systemChanges, &SystemChanges::networkChanged, &m_store, &SnapshotStore::catchUp);
    connect(&m_systemChanges, &SystemChanges::networkChanged, &m_updater, &SparkleUpdater::tryAgain);
    showBadge();
    QTimer::singleShot(rehearsalDelay, this, &TorvaneApp::rehearse);
}

/// What a fetch takes is slow to load: the badge goes first.
void TorvaneApp::begin() {
    if (std::exchange(m_hasBegun, true))
        return;
    m_tasks.run(beginToFetch());
}

Task<> TorvaneApp::beginToFetch() {
    Task<> ready = NetworkClient::prepare();
    co_await ready;
    m_store.start();
}

void TorvaneApp::rehearse() {
    m_popover.rehearse();
    returnFreedMemory(); // Of the whole start too.
}

void TorvaneApp::comeForward() {
    m_popover.open({});
}

void TorvaneApp::showBadge() {
    m_badge.emplace(QDBusConnection::sessionBus());
    connect(&m_feed, &BadgeFeed::lookChanged, &*m_badge, &BadgeHost::show);
    connect(&*m_badge, &BadgeHost::appeared, this, &TorvaneApp::begin);
    connect(&*m_badge, &BadgeHost::clicked, &m_popover, &Popover::toggle);
    connect(&*m_badge, &BadgeHost::commandChosen, this, &TorvaneApp::obey);
    // The desktop's, not the one that the user wants of our windows: panels are the desktop's.
    connect(&m_colorScheme, &ColorScheme::preferenceChanged, this,
            [this] { m_badge->setPreference(appearance(m_colorScheme.preference())); });
    m_feed.follow(m_theme);
    m_badge->show(m_feed.look());
    QTimer::singleShot(patienceForBadge, this, &TorvaneApp::begin);
    m_patienceForPanels.setSingleShot(true);
    connect(&m_patienceForPanels, &QTimer::timeout, this, &TorvaneApp::tellWhetherSeen);
    m_patienceForPanels.start(patienceForPanels);
}

void TorvaneApp::tellWhetherSeen() {
    if (m_badge->kind() == SurfaceKind::none)
        notice(QStringLiteral("No panel here shows the badge so far; it appears as soon as one does. Start velisk once "
                              "more to open its window."));
}

void TorvaneApp::obey(BadgeCommand command) {
    switch (command) {
    case BadgeCommand::show:
        comeForward();
        return;
    case BadgeCommand::refresh:
        refresh();
        return;
    case BadgeCommand::preferences:
        openPreferences();
        return;
    case BadgeCommand::quit:
        QCoreApplication::quit();
        return;
    }
}

std::unique_ptr<QWidget> TorvaneApp::makePopoverView() {
    auto view = std::make_unique<PopoverView>(m_store, m_settings);
    connect(view.get(), &PopoverView::refreshRequested, this, &TorvaneApp::refresh);
    connect(view.get(), &PopoverView::preferencesRequested, this, &TorvaneApp::openPreferences);
    connect(view.get(), &PopoverView::quitRequested, this, &QCoreApplication::quit);
    return view;
}

/// Where the popover is a popup, Qt closes it for a window that comes up, but not for an open one that is brought
/// forward: it would stay above that, and keep the keyboard.
void TorvaneApp::openPreferences() {
    m_popover.close();
    m_preferences.open();
}

void TorvaneApp::refresh() {
    m_tasks.run(m_store.refresh());
}

} // namespace torvane

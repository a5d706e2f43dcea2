#include "TorvaneApp.h"

#include "Coordination/Notifications.h"
#include "TimerSettings.h"
#include "Views/PopoverView.h"

#include <QCoreApplication>

namespace torvane {

namespace {

std::optional<Appearance> appearance(ColorPreference preference) {
    if (preference == ColorPreference::none)
        return std::nullopt;
    return preference == ColorPreference::dark ? Appearance::dark : Appearance::light;
}

} // namespace

TorvaneApp::TorvaneApp()
    : m_popover([this] { return makePopoverView(); })
    , m_badge(QDBusConnection::sessionBus()) {
    connectBadge();
    rebuildTimersOnChange(m_settings, m_store);
    GasNotifier::requestAuthorization();
    QMetaObject::invokeMethod(
        this, [this] { m_store.start(); }, Qt::QueuedConnection);
}

void TorvaneApp::connectBadge() {
    connect(&m_feed, &BadgeFeed::lookChanged, &m_badge, &BadgeHost::show);
    connect(&m_badge, &BadgeHost::clicked, &m_popover, &Popover::toggle);
    connect(&m_badge, &BadgeHost::commandChosen, this, &TorvaneApp::obey);
    // The desktop's, not the one that the user wants of our windows: panels are the desktop's.
    connect(&m_colorScheme, &ColorScheme::preferenceChanged, this,
            [this] { m_badge.setPreference(appearance(m_colorScheme.preference())); });
    m_badge.show(m_feed.look());
}

void TorvaneApp::obey(BadgeCommand command) {
    switch (command) {
    case BadgeCommand::show:
        m_popover.open({});
        return;
    case BadgeCommand::refresh:
        refresh();
        return;
    case BadgeCommand::preferences:
        m_preferences.open();
        return;
    case BadgeCommand::quit:
        QCoreApplication::quit();
        return;
    }
}

std::unique_ptr<QWidget> TorvaneApp::makePopoverView() {
    auto view = std::make_unique<PopoverView>(m_store, m_settings);
    connect(view.get(), &PopoverView::refreshRequested, this, &TorvaneApp::refresh);
    connect(view.get(), &PopoverView::preferencesRequested, this, [this] { m_preferences.open(); });
    connect(view.get(), &PopoverView::quitRequested, this, &QCoreApplication::quit);
    return view;
}

void TorvaneApp::refresh() {
    m_tasks.run(m_store.refresh());
}

} // namespace torvane

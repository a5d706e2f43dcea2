#include "TorvaneApp.h"

#include "Coordination/Notifications.h"
#include "TimerSettings.h"

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
    : m_badge(QDBusConnection::sessionBus()) {
    connect(&m_feed, &BadgeFeed::lookChanged, &m_badge, &BadgeHost::show);
    connect(&m_badge, &BadgeHost::commandChosen, this, &TorvaneApp::obey);
    // The desktop's, not the one that the user wants of our windows: panels are the desktop's.
    connect(&m_colorScheme, &ColorScheme::preferenceChanged, this,
            [this] { m_badge.setPreference(appearance(m_colorScheme.preference())); });
    m_badge.show(m_feed.look());
    rebuildTimersOnChange(m_settings, m_store);
    GasNotifier::requestAuthorization();
    QMetaObject::invokeMethod(
        this, [this] { m_store.start(); }, Qt::QueuedConnection);
}

void TorvaneApp::obey(BadgeCommand command) {
    switch (command) {
    case BadgeCommand::refresh:
        m_tasks.run(m_store.refresh());
        return;
    case BadgeCommand::quit:
        QCoreApplication::quit();
        return;
    case BadgeCommand::preferences:
        m_preferences.open();
        return;
    case BadgeCommand::show:
        return;
    }
}

} // namespace torvane

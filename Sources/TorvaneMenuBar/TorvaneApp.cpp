#include "TorvaneApp.h"

#include "Badge/BadgeText.h"
#include "Coordination/Notifications.h"
#include "TimerSettings.h"

#include <QCoreApplication>

namespace torvane {

TorvaneApp::TorvaneApp()
    : m_badge(QDBusConnection::sessionBus()) {
    connect(&m_store, &ObservableObject::objectWillChange, this, &TorvaneApp::showBadgeSoon);
    connect(&m_settings, &ObservableObject::objectWillChange, this, &TorvaneApp::showBadgeSoon);
    connect(&m_badge, &StatusItemBadge::refreshRequested, this, [this] { m_tasks.run(m_store.refresh()); });
    connect(&m_badge, &StatusItemBadge::quitRequested, this, &QCoreApplication::quit);
    m_badge.show(badgeLook(m_store.snapshot, m_settings));
    rebuildTimersOnChange(m_settings, m_store);
    GasNotifier::requestAuthorization();
    QMetaObject::invokeMethod(
        this, [this] { m_store.start(); }, Qt::QueuedConnection);
}

/// Changes are announced before they take effect, and many at a time: the badge looks once, after all of them.
void TorvaneApp::showBadgeSoon() {
    if (m_badgeIsStale)
        return;
    m_badgeIsStale = true;
    const auto show = [this] {
        m_badgeIsStale = false;
        m_badge.show(badgeLook(m_store.snapshot, m_settings));
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}

} // namespace torvane

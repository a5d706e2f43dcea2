#include "TorvaneApp.h"

#include "Coordination/Notifications.h"
#include "TimerSettings.h"

#include <QCoreApplication>

namespace torvane {

TorvaneApp::TorvaneApp()
    : m_badge(QDBusConnection::sessionBus()) {
    connect(&m_feed, &BadgeFeed::lookChanged, &m_badge, &BadgeHost::show);
    connect(&m_badge, &BadgeHost::commandChosen, this, &TorvaneApp::obey);
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
    case BadgeCommand::show:
    case BadgeCommand::preferences:
        return;
    }
}

} // namespace torvane

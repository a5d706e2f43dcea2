#pragma once

#include "Badge/BadgeFeed.h"
#include "Badge/BadgeHost.h"
#include "Coordination/SnapshotStore.h"
#include "Design/Theme.h"
#include "Platform/SystemChanges.h"
#include "Popover.h"
#include "PreferencesWindow.h"
#include "SparkleUpdater.h"
#include "UpdateDownload.h"

#include <QObject>
#include <QTimer>

#include <optional>

namespace torvane {

/// The program: the shared objects, which live as long as it does, and what shows them.
class TorvaneApp final : public QObject {
    Q_OBJECT

public:
    /// Needs a QApplication. The store starts when the badge is in a panel, or soon where there is none. `id` is the
    /// application's; `relaunch` puts a newer version in this one's place.
    TorvaneApp(const QString& id, Updates::Relaunch relaunch);

    /// Opens the popover, for somebody who started the program once more.
    void comeForward();

private:
    void showBadge();
    void begin();
    Task<> beginToFetch();
    void rehearse();
    void obey(BadgeCommand command);
    std::unique_ptr<QWidget> makePopoverView();
    void openPreferences();
    void refresh();
    void tellWhetherSeen();

    UserDefaults m_defaults = UserDefaults::standard(QStringLiteral("velisk"));
    AppSettings m_settings{m_defaults};
    SnapshotStore m_store{m_settings, m_defaults};
    UpdateDownload m_updateDownload;
    SparkleUpdater m_updater;
    ApplicationPalette m_palette;
    ColorScheme m_colorScheme{QDBusConnection::sessionBus(), m_palette};
    Theme m_theme{m_settings, m_colorScheme, m_palette};
    Preferences m_preferences{m_store, m_settings, m_updater.state()};
    Popover m_popover;
    BadgeFeed m_feed{m_store, m_settings};
    std::optional<BadgeHost> m_badge;
    QTimer m_patienceForPanels;
    SystemChanges m_systemChanges;
    bool m_hasBegun = false;
    TaskScope m_tasks; // Last, so that what still runs goes before what it uses.
};

} // namespace torvane

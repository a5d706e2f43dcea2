#pragma once

#include "Badge/BadgeSurface.h"
#include "Badge/PanelKind.h"
#include "Design/DesignSystem.h"
#include "Platform/SystemTray.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <memory>

namespace torvane {

/// The badge in whatever panel there is. It finds out which program shows status notifier items, and whether there is
/// an X system tray, and keeps the surface that serves best; panels may come late, go, and be exchanged.
class BadgeHost final : public QObject {
    Q_OBJECT

public:
    using ProcessLookup = PanelProcess (*)(uint processId);

    /// Needs a QApplication. The lookup is for tests.
    explicit BadgeHost(const QDBusConnection& bus, ProcessLookup lookup = &panelProcess);

    /// Shows this look; an equal one is neither drawn nor sent.
    void show(const BadgeLook& look);

    /// Whether the desktop's user asked for dark or light; none where nobody said so. Panels that state their own
    /// colours go before it.
    void setPreference(std::optional<Appearance> preference);

    SurfaceKind kind() const { return m_kind; }

    /// Null while there is nothing to show the badge on.
    BadgeSurface* surface() const { return m_surface.get(); }

Q_SIGNALS:
    /// A panel or tray has the badge.
    void appeared();

    /// The badge was clicked. Where it lies, in device-independent pixels of the screen, as well as it is known: a
    /// single pixel is where the pointer was, and a null rectangle says nothing.
    void clicked(QRect place);

    void commandChosen(BadgeCommand command);
    void surfaceChanged();

private Q_SLOTS:
    void askForHost();

private:
    void panelChanged(const QString& owner);
    void askForProcess();
    void processKnown(const PanelProcess& process);
    void unsettle();
    void choose();
    void trayChanged();
    std::unique_ptr<BadgeSurface> createSurface(SurfaceKind kind) const;
    void replaceSurface(SurfaceKind kind);
    BadgeInk ink() const;
    void draw();
    QRect placeOf(QPoint stated) const;

    QDBusConnection m_bus;
    const ProcessLookup m_lookup;
    QDBusServiceWatcher m_panels;
    SystemTray m_tray;
    QTimer m_settling;
    QString m_owner;                  // The panel's connection; empty without one.
    std::optional<PanelKind> m_panel; // None until its process is known.
    bool m_hasHost = true;
    std::optional<Appearance> m_preference;
    BadgeLook m_look;
    SurfaceKind m_kind = SurfaceKind::none;
    std::unique_ptr<BadgeSurface> m_surface;
};

} // namespace torvane

#pragma once

#include "Platform/ApplicationPalette.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <memory>

class QDBusMessage;
class QDBusPendingCallWatcher;

namespace torvane {

/// What the desktop's user has chosen in org.freedesktop.appearance, with the portal's own numbers.
enum class ColorPreference : uint { none = 0, dark = 1, light = 2 };

/// Whether the desktop wants dark windows: by org.freedesktop.portal.Settings, or, where there is no such portal or
/// nobody has chosen, by the desktop's palette. It never waits: until the portal has answered, the palette counts.
class ColorScheme final : public QObject {
    Q_OBJECT

public:
    /// The palette must outlive it.
    ColorScheme(const QDBusConnection& bus, const ApplicationPalette& palette, QObject* parent = nullptr);
    ~ColorScheme() override;

    bool isDark() const;

    ColorPreference preference() const { return m_preference; }

Q_SIGNALS:
    void isDarkChanged(bool isDark);
    void preferenceChanged();

private Q_SLOTS:
    void settingChanged(const QDBusMessage& signal);

private:
    void ask();
    void answered();
    void setPreference(ColorPreference preference);
    void announceChange();

    QDBusConnection m_bus;
    const ApplicationPalette& m_palette;
    QDBusServiceWatcher m_portals;
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
    QTimer m_patience;
    ColorPreference m_preference = ColorPreference::none;
    bool m_announced;
};

} // namespace torvane

#pragma once

#include "Design/DesignSystem.h"
#include "Model/AppSettings.h"
#include "Platform/ColorScheme.h"

namespace torvane {

/// The standard widgets' colours, such as those of menus, scroll bars and tool tips, from our own.
QPalette widgetPalette(Appearance appearance);

/// The appearance of all windows: the user's choice, or the desktop's where there is none. The only one who sets
/// currentAppearance() and the application's palette; open windows are repainted when it changes.
class Theme final : public QObject {
    Q_OBJECT

public:
    /// All three must outlive it.
    Theme(const AppSettings& settings, const ColorScheme& desktop, ApplicationPalette& palette);

Q_SIGNALS:
    /// After the change.
    void appearanceChanged(Appearance appearance);

private:
    void follow(AppTheme theme);
    void apply(Appearance appearance);

    const AppSettings& m_settings;
    const ColorScheme& m_desktop;
    ApplicationPalette& m_palette;
};

} // namespace torvane

#include "Design/Theme.h"

#include <array>

namespace torvane {

namespace {

struct RoleColor {
    QPalette::ColorRole role;
    DynamicColor color;
};

constexpr std::array roleColors{
    RoleColor{QPalette::Window, Palette::paper},
    RoleColor{QPalette::WindowText, Palette::ink},
    RoleColor{QPalette::Base, Palette::surface},
    RoleColor{QPalette::AlternateBase, Palette::surface2},
    RoleColor{QPalette::Text, Palette::ink},
    RoleColor{QPalette::PlaceholderText, Palette::ink3},
    RoleColor{QPalette::ToolTipBase, Palette::surface},
    RoleColor{QPalette::ToolTipText, Palette::ink},
    RoleColor{QPalette::Button, Palette::surface2},
    RoleColor{QPalette::ButtonText, Palette::ink},
    RoleColor{QPalette::BrightText, Palette::ink},
    RoleColor{QPalette::Light, Palette::surface},
    RoleColor{QPalette::Midlight, Palette::surface2},
    RoleColor{QPalette::Mid, Palette::line2},
    RoleColor{QPalette::Dark, Palette::ink4},
    RoleColor{QPalette::Shadow, Palette::line},
    RoleColor{QPalette::Highlight, Palette::accent},
    RoleColor{QPalette::HighlightedText, Palette::accentInk},
    RoleColor{QPalette::Link, Palette::ink},
    RoleColor{QPalette::LinkVisited, Palette::ink2},
};

constexpr std::array disabledColors{
    RoleColor{QPalette::WindowText, Palette::ink4},      RoleColor{QPalette::Text, Palette::ink4},
    RoleColor{QPalette::ButtonText, Palette::ink4},      RoleColor{QPalette::Highlight, Palette::surface3},
    RoleColor{QPalette::HighlightedText, Palette::ink4},
};

Appearance effectiveAppearance(AppTheme theme, bool desktopIsDark) {
    switch (theme) {
    case AppTheme::auto_:
        return desktopIsDark ? Appearance::dark : Appearance::light;
    case AppTheme::light:
        return Appearance::light;
    case AppTheme::dark:
        return Appearance::dark;
    }
    Q_UNREACHABLE();
}

} // namespace

QPalette widgetPalette(Appearance appearance) {
    QPalette palette;
    for (const RoleColor& each : roleColors)
        palette.setColor(QPalette::All, each.role, each.color.in(appearance));
    for (const RoleColor& each : disabledColors)
        palette.setColor(QPalette::Disabled, each.role, each.color.in(appearance));
    return palette;
}

Theme::Theme(const AppSettings& settings, const ColorScheme& desktop, ApplicationPalette& palette)
    : m_settings(settings)
    , m_desktop(desktop)
    , m_palette(palette) {
    settings.theme.observe(this, [this](AppTheme next) { follow(next); });
    connect(&desktop, &ColorScheme::isDarkChanged, this, [this] { follow(m_settings.theme); });
    apply(effectiveAppearance(settings.theme, desktop.isDark()));
}

void Theme::follow(AppTheme theme) {
    const Appearance appearance = effectiveAppearance(theme, m_desktop.isDark());
    if (appearance == currentAppearance())
        return;
    apply(appearance);
    Q_EMIT appearanceChanged(appearance);
}

void Theme::apply(Appearance appearance) {
    setCurrentAppearance(appearance);
    m_palette.set(widgetPalette(appearance));
}

} // namespace torvane

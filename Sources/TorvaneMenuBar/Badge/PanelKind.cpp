#include "Badge/PanelKind.h"

#include <QFile>

#include <array>
#include <string>
#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// By the beginning of the kernel's name, which may be cut off.
constexpr std::array panels{
    std::pair{"gnome-shell"_L1, PanelKind::labelled},
    std::pair{"ayatana-indicat"_L1, PanelKind::labelled},
    std::pair{"indicator-appli"_L1, PanelKind::labelled},
    std::pair{"notification-ar"_L1, PanelKind::wide},
    std::pair{"mate-panel"_L1, PanelKind::wide},
    std::pair{"waybar"_L1, PanelKind::wide},
    std::pair{"xfce4-panel"_L1, PanelKind::xfce},
    std::pair{"kded5"_L1, PanelKind::plasma},
    std::pair{"kded6"_L1, PanelKind::plasma},
    std::pair{"plasmashell"_L1, PanelKind::plasma},
    std::pair{"swaybar"_L1, PanelKind::swaybar},
};

/// xfce's plugins run in a process each, which is named after the plugin's number and what it is.
constexpr auto xfceTray = "libsystray.so"_L1;

QString contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.read(4096)) : QString();
}

} // namespace

PanelProcess panelProcess(uint processId) {
    const QString folder = "/proc/"_L1 + QLatin1StringView(std::to_string(processId));
    return {contentOf(folder + "/comm"_L1).trimmed(), contentOf(folder + "/cmdline"_L1).replace(QChar(0), u' ')};
}

PanelKind panelKind(const PanelProcess& process) {
    if (process.commandLine.contains(xfceTray))
        return PanelKind::xfce;
    for (const auto& [name, kind] : panels) {
        if (process.name.startsWith(name))
            return kind;
    }
    return PanelKind::other;
}

SurfaceKind surfaceKind(const PanelSurroundings& around) {
    if (!around.panel)
        return around.hasTray && around.hasSettled ? SurfaceKind::trayWindow : SurfaceKind::none;
    switch (*around.panel) {
    case PanelKind::labelled:
        return SurfaceKind::label;
    case PanelKind::wide:
        return SurfaceKind::wide;
    case PanelKind::xfce:
        if (around.wantsFigure && around.hasTray)
            return SurfaceKind::trayWindow;
        return around.wantsFigure && !around.hasSettled ? SurfaceKind::none : SurfaceKind::symbolic;
    case PanelKind::plasma:
        // Its service collects items on other desktops too, for as long as some program of Plasma's is there.
        return around.hasHost || !around.hasTray ? SurfaceKind::symbolic : SurfaceKind::trayWindow;
    case PanelKind::swaybar:
    case PanelKind::other:
        return SurfaceKind::square;
    }
    Q_UNREACHABLE();
}

} // namespace torvane

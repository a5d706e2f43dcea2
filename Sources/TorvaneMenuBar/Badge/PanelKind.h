#pragma once

#include <QString>

#include <optional>

namespace torvane {

/// The program behind a panel: the kernel's name for it, which has 15 characters at most, and its command line.
struct PanelProcess {
    QString name;
    QString commandLine;
};

/// Read from /proc; empty where that does not say.
PanelProcess panelProcess(uint processId);

/// The panels that need a badge of their own; all others do with what `other` has.
enum class PanelKind {
    labelled, ///< GNOME's extension, the Ayatana service: they write a text beside the icon
    wide,     ///< MATE, waybar: a picture may be wider than high
    xfce,     ///< squeezes wide pictures, but gives a window in its tray all the width it asks for
    plasma,   ///< tints pictures that have a name, and says rightly where a click was
    swaybar,  ///< says rightly where a click was
    other,    ///< shows squares
};

PanelKind panelKind(const PanelProcess& process);

/// The ways of showing the badge.
enum class SurfaceKind { none, label, wide, symbolic, square, trayWindow };

/// What there is to show a badge on.
struct PanelSurroundings {
    std::optional<PanelKind> panel; ///< of status notifier items
    bool hasTray = false;           ///< of an X display
    bool wantsFigure = true;
    bool hasHost = true;    ///< whether the panel says that somebody shows its items
    bool hasSettled = true; ///< false for a moment after a change: what comes up together does so one by one
};

SurfaceKind surfaceKind(const PanelSurroundings& surroundings);

} // namespace torvane

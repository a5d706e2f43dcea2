#pragma once

#include <QString>

namespace torvane {

/// Whether a program, by its path without links, lies in the folder that this variable of the environment names, as one
/// does that was packed with its surroundings ("APPDIR" of an AppImage, "SNAP" of a snap). The variable alone says
/// nothing: a packed terminal hands its own on to all that is started in it.
bool isPackedIn(const char* variable, const QString& program);

/// Whether this process runs in a Flatpak.
bool isInFlatpak();

} // namespace torvane

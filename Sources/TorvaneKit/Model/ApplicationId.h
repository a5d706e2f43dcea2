#pragma once

#include <QLatin1StringView>

namespace torvane {

/// What the desktop knows the program by: the name of its desktop entry, its autostart entry, its icon and its item in
/// the panel (the Desktop Entry Specification's reverse domain names).
inline constexpr QLatin1StringView applicationId("org.velisk.Torvane");

} // namespace torvane

#pragma once

#include "Platform/DBusMenu.h"

#include <optional>

namespace torvane {

/// What the badge's menu offers.
enum class BadgeCommand { show = 1, refresh, preferences, quit };

/// The menu's entries, whoever draws it.
QList<MenuEntry> badgeMenu();

/// The command of an entry; none of a separator or of what is no entry.
std::optional<BadgeCommand> badgeCommand(int entry);

} // namespace torvane

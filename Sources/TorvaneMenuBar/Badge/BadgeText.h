#pragma once

#include "Badge/StatusItemBadge.h"
#include "Model/AppSettings.h"
#include "Model/Snapshot.h"

#include <optional>

namespace torvane {

/// What the badge says of a snapshot under the user's settings: the figure unless it is switched off, and in words of
/// what it is. Without a snapshot there is no figure.
BadgeLook badgeLook(const std::optional<Snapshot>& snapshot, const AppSettings& settings);

} // namespace torvane

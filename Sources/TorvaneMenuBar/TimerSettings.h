#pragma once

#include "Coordination/SnapshotStore.h"
#include "Model/AppSettings.h"

namespace torvane {

/// For as long as the store lives: whenever the live cadence or the badge's network becomes another one, the store's
/// timers are rebuilt once, on the next turn of the loop.
void rebuildTimersOnChange(const AppSettings& settings, SnapshotStore& store);

} // namespace torvane

#pragma once

#include "Coordination/SnapshotStore.h"
#include "Coordination/UpdaterState.h"
#include "Model/AppSettings.h"

class QWidget;

/// What stands below each section's title. Every control writes at once, and follows what changes elsewhere.
namespace torvane::PreferencesPanels {

QWidget* general(AppSettings& settings);
QWidget* networks(SnapshotStore& store, AppSettings& settings);
QWidget* menuBar(SnapshotStore& store, AppSettings& settings);
QWidget* alerts(AppSettings& settings);
QWidget* appearance(AppSettings& settings);
QWidget* about(UpdaterState& updater);

/// The networks that the badge can follow: Ethereum, then the snapshot's in their order, switched off or not; of very
/// many the first.
QList<BadgeChain> badgeChains(const std::optional<Snapshot>& snapshot);

} // namespace torvane::PreferencesPanels

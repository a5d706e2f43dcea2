#pragma once

#include "Coordination/SnapshotStore.h"
#include "Support/Clock.h"
#include "Support/SampleSnapshot.h"
#include "Support/TemporaryHome.h"

namespace torvane {

/// The shared objects that the popover shows, filled by hand: nothing asks the network. The clock stands still.
struct PopoverScene {
    static QDateTime now() { return QDateTime::fromSecsSinceEpoch(1790000000, Qt::UTC); }

    PopoverScene() {
        Clock::setSource(&PopoverScene::now);
        store.snapshot = SampleSnapshot::busyHour();
        store.lastUpdated = now().addSecs(-5);
        store.ethereumBlockNumber = 21000000;
    }

    ~PopoverScene() { Clock::setSource(nullptr); }

    PopoverScene(const PopoverScene&) = delete;
    PopoverScene& operator=(const PopoverScene&) = delete;

    /// Publishes the snapshot with a change.
    template <class Edit>
    void change(const Edit& edit) {
        Snapshot changed = *store.snapshot.value();
        edit(changed);
        store.snapshot = changed;
    }

    TemporaryHome home;
    UserDefaults defaults{home.filePath(QStringLiteral("preferences.json")), home.filePath(QStringLiteral("cache"))};
    AppSettings settings{defaults};
    SnapshotStore store{settings, defaults};
};

} // namespace torvane

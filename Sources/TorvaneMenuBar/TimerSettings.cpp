#include "TimerSettings.h"

namespace torvane {

namespace {

template <class T>
void rebuildTimersOnChange(const Setting<T>& setting, SnapshotStore& store) {
    setting.observe(&store, [&setting, &store](const T& next) {
        if (next == setting.value())
            return;
        // Queued: what is announced here has not taken effect yet.
        QMetaObject::invokeMethod(&store, &SnapshotStore::rescheduleTimers, Qt::QueuedConnection);
    });
}

} // namespace

void rebuildTimersOnChange(const AppSettings& settings, SnapshotStore& store) {
    rebuildTimersOnChange(settings.liveCadence, store);
    rebuildTimersOnChange(settings.badgeChain, store);
}

} // namespace torvane

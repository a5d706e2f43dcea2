#include "TorvaneUpdates/UpdateWorker.h"

#include <QCoreApplication>

namespace torvane::Updates {

Worker& updateWorker() {
    static Worker thread;
    // Before the application object goes: results are delivered through it, and no file may stay half replaced.
    [[maybe_unused]] static const bool isAwaited = [] {
        qAddPostRoutine([] { updateWorker().waitForDone(); });
        return true;
    }();
    return thread;
}

} // namespace torvane::Updates

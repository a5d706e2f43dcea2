#pragma once

#include "Support/Async.h"
#include "Support/Published.h"
#include "Support/UserDefaults.h"
#include "TorvaneUpdates/Download.h"
#include "TorvaneUpdates/Obstacle.h"
#include "TorvaneUpdates/Properties.h"
#include "TorvaneUpdates/Signature.h"
#include "TorvaneUpdates/UpdateMemory.h"
#include "TorvaneUpdates/Windows.h"

#include <QTimer>

#include <memory>
#include <optional>

namespace torvane::Updates {

class UpdateSession;

/// The updater: finds newer versions by itself once a day or when asked, and replaces the program's own file. What it
/// shows goes through `windows`. It keeps the time of the last check, a skipped version and whether it checks by itself
/// in the user's defaults. Main thread only.
class Updater final : public ObservableObject {
    Q_OBJECT

public:
    Updater(Properties properties, UserDefaults& defaults, Download& download, Windows& windows, Relaunch relaunch);
    ~Updater() override;

    /// Begins the schedule, and clears up what an earlier run may have left behind. Where the build has no usable key,
    /// nothing ever happens and nothing can be checked.
    void start();

    /// False from the start of any check until its last window has closed, and where updates are impossible.
    Published<bool> canCheckForUpdates{this, false};

    /// A check by hand, which shows all that happens. While one is under way its window comes to the front.
    void checkForUpdates();

    bool automaticallyChecksForUpdates() const;
    void setAutomaticallyChecksForUpdates(bool automatic);

    /// A time of day may have passed unnoticed (sleep): an overdue check is made as soon as one at the start would be.
    /// At once it would fail, since after a sleep the network takes some seconds to come up.
    void catchUp();

    /// This machine's addresses are others now: a check by itself that could not fetch the feed is made once more.
    void tryAgain();

Q_SIGNALS:
    /// The successor runs: this program must end.
    void replaced();

private:
    Task<> prepare();
    void schedule(std::chrono::milliseconds soonest);
    void checkIfDue();
    void makeSession();
    void endSession();

    const Properties m_properties;
    const UpdateMemory m_memory;
    Download& m_download;
    Windows& m_windows;
    const Relaunch m_relaunch;
    std::optional<PublicKey> m_key; // None before it has been prepared, or where there is no usable one.
    Executable m_executable;        // As it was when the program started.
    QTimer m_nextCheck;
    std::unique_ptr<UpdateSession> m_session;
    bool m_mayTryAgain = false;       // The last check may be made once more.
    bool m_isSecondTry = false;       // The one that is under way is such a one.
    bool m_hasNetworkChanged = false; // Since it began.
    TaskScope m_tasks;                // Last, so that what still runs goes before what it uses.
};

} // namespace torvane::Updates

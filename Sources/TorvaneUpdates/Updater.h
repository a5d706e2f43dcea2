#pragma once

#include "Support/Async.h"
#include "Support/Published.h"
#include "Support/UserDefaults.h"
#include "TorvaneUpdates/Download.h"
#include "TorvaneUpdates/Windows.h"

#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

namespace torvane::Updates {

/// What the build says of itself.
struct Properties final {
    QUrl feed;          // RSS 2.0 with Sparkle's namespace, https
    QString publicKey;  // base64 of an Ed25519 key (RFC 8032); empty: this build takes no updates
    QString product;    // as the note inside the payload names it
    QString version;    // of the running program
    QString executable; // the file to replace
    std::chrono::seconds interval{std::chrono::hours{24}}; // between checks that nobody asked for
};

/// Starts the program in this file as the successor of the running one, which gives up its place in the session to it.
/// True once the successor has that place; the caller then ends the program. False when it failed to come up: the
/// running one has taken its place again.
using Relaunch = std::function<Task<bool>(QString executable)>;

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

    /// A time of day may have passed unnoticed (sleep): an overdue check starts now.
    void catchUp();

Q_SIGNALS:
    /// The successor runs: this program must end.
    void replaced();
};

} // namespace torvane::Updates

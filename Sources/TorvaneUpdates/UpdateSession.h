#pragma once

#include "TorvaneUpdates/Appcast.h"
#include "TorvaneUpdates/Download.h"
#include "TorvaneUpdates/Obstacle.h"
#include "TorvaneUpdates/Properties.h"
#include "TorvaneUpdates/Signature.h"
#include "TorvaneUpdates/Stage.h"
#include "TorvaneUpdates/UpdateMemory.h"

#include <QObject>

#include <memory>
#include <optional>
#include <stop_token>

namespace torvane::Updates {

class Installation;

/// What a session takes from its updater, and what outlives it.
struct SessionContext final {
    Properties properties;
    PublicKey key;
    Executable executable; // as it was when the program started
    UpdateMemory memory;
    Download& download;
    Windows& windows;
    Relaunch relaunch;
};

/// One check, and all that comes of it, up to the program's end. Destroying it gives up whatever is under way.
class UpdateSession final : public QObject {
    Q_OBJECT

public:
    explicit UpdateSession(SessionContext context);
    ~UpdateSession() override;

    /// Looks for a newer version; nothing is seen of it unless there is one.
    void begin();

    /// Somebody asks by hand: from now on all is shown, in front of other windows.
    void comeForward();

    /// Ends it, whatever is under way.
    void giveUp();

    /// Whether the feed could not be fetched and nobody has been told: the next network may have more luck.
    bool hasMissedFeed() const { return m_hasMissedFeed; }

    /// Whether nobody has seen anything of it.
    bool isSilent() const { return !m_stage.isOpen(); }

Q_SIGNALS:
    /// It is over, and the program stays as it is.
    void ended();

    /// The successor runs: this program must end.
    void replaced();

private:
    struct Findings;

    Task<> run();
    Task<> update();
    Task<QByteArray> fetchFeed();
    Task<Findings> look();
    std::optional<AppcastItem> choose(const Findings& findings) const;
    Task<> offer(AppcastItem item, QString obstacle);
    Task<> install(AppcastItem item, Offer offer);
    Task<> download(AppcastItem item, Offer offer);
    Task<> check(AppcastItem item);
    Task<> replace();
    void showProgress(const Offer& offer, qint64 received);
    void letGoOfFiles();

    const SessionContext m_context;
    Stage m_stage;
    std::shared_ptr<Installation> m_installation; // Of one that is under way. It ends on the worker.
    qint64 m_progressSteps = -1;
    bool m_hasMissedFeed = false;
    std::stop_source m_stop;
    std::optional<TaskScope> m_tasks{std::in_place};
};

} // namespace torvane::Updates

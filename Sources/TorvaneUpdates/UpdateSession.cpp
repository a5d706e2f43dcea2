#include "TorvaneUpdates/UpdateSession.h"

#include "Support/Clock.h"
#include "TorvaneUpdates/Installation.h"
#include "TorvaneUpdates/PayloadCheck.h"
#include "TorvaneUpdates/Suitability.h"
#include "TorvaneUpdates/UpdateFailure.h"
#include "TorvaneUpdates/UpdateWorker.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

/// As finely as a progress is shown: more steps would be work that nobody sees.
constexpr qint64 progressSteps = 200;

Offer offerOf(const AppcastItem& item, const Properties& properties, const QString& obstacle) {
    Offer offer{.version = item.displayVersion, .currentVersion = properties.version};
    offer.notes = item.notes;
    offer.notesLink = item.isInformational ? item.link : item.notesLink;
    offer.length = item.length;
    offer.isCritical = item.isCritical;
    offer.obstacle = obstacle;
    return offer;
}

/// A sentence that says what there is and who brings it; empty where the program can be replaced.
QString sentenceFor(const AppcastItem& item, const QString& obstacle) {
    const QString exists = u"Version "_s + item.displayVersion + u" exists"_s;
    if (item.isInformational)
        return exists + u". It cannot be installed from here; its page tells more."_s;
    if (obstacle.isEmpty())
        return {};
    return exists + u", but "_s + obstacle + u": the package manager, or whoever installed it, brings the new one."_s;
}

} // namespace

/// What a check reads, the program's own file included.
struct UpdateSession::Findings final {
    QList<AppcastItem> items;
    System system;
    QString obstacle;
};

UpdateSession::UpdateSession(SessionContext context)
    : m_context(std::move(context))
    , m_stage(m_context.windows) {}

UpdateSession::~UpdateSession() {
    m_tasks.reset();
    letGoOfFiles();
}

void UpdateSession::begin() {
    m_tasks->run(run());
}

void UpdateSession::comeForward() {
    if (isSilent())
        m_stage.show(Checking{}, [this](Answer) { giveUp(); });
    m_stage.bringToFront();
}

Task<> UpdateSession::run() {
    QString failure;
    try {
        Task<> updating = update();
        co_await updating;
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
    }
    letGoOfFiles();
    // A check that nobody asked for fails in silence: the next one tries again.
    if (!failure.isEmpty() && !isSilent()) {
        Task<Answer> telling = m_stage.ask(Failed{failure});
        co_await telling;
    }
    m_stage.close();
    Q_EMIT ended();
}

Task<> UpdateSession::update() {
    Task<Findings> looking = look();
    const Findings findings = co_await looking;
    const std::optional<AppcastItem> item = choose(findings);
    if (item) {
        Task<> offering = offer(*item, sentenceFor(*item, findings.obstacle));
        co_await offering;
    } else if (!isSilent()) {
        Task<Answer> telling = m_stage.ask(UpToDate{m_context.properties.version});
        co_await telling;
    }
}

Task<QByteArray> UpdateSession::fetchFeed() {
    try {
        Task<QByteArray> fetching = m_context.download.document(m_context.properties.feed, largestFeed);
        const QByteArray feed = co_await fetching;
        co_return feed;
    } catch (const std::exception&) {
        m_hasMissedFeed = isSilent();
        throw;
    }
}

Task<UpdateSession::Findings> UpdateSession::look() {
    Task<QByteArray> fetching = fetchFeed();
    const QByteArray feed = co_await fetching;
    const auto read = [feed, executable = m_context.executable] {
        return Findings{readAppcast(feed), System::current(), obstacleTo(executable)};
    };
    const Findings findings = co_await detached(read);
    co_return findings;
}

std::optional<AppcastItem> UpdateSession::choose(const Findings& findings) const {
    Suitability suitability{.runningVersion = m_context.properties.version,
                            .product = m_context.properties.product,
                            .system = findings.system,
                            .now = Clock::now()};
    suitability.rolloutPlace = m_context.memory.rolloutPosition();
    suitability.skippedVersion = m_context.memory.skippedVersion();
    suitability.isAskedFor = !isSilent();
    const std::optional<AppcastItem> item = bestItem(findings.items, suitability);
    const bool isHopeless = item && !sentenceFor(*item, findings.obstacle).isEmpty();
    // What the user can do nothing about here is told once, unless it is grave.
    const bool isOld = isHopeless && !item->isCritical && m_context.memory.announcedVersion() == item->version;
    return isOld && isSilent() ? std::nullopt : item;
}

Task<> UpdateSession::offer(AppcastItem item, QString obstacle) {
    const Offer offer = offerOf(item, m_context.properties, obstacle);
    if (!obstacle.isEmpty())
        m_context.memory.noteAnnounced(item.version);
    Task<Answer> asking = m_stage.ask(Found{offer});
    const Answer answer = co_await asking;
    if (answer == Answer::skip && !item.isCritical)
        m_context.memory.skip(item.version);
    if (answer != Answer::install || !obstacle.isEmpty())
        co_return;
    Task<> installing = install(item, offer);
    co_await installing;
}

Task<> UpdateSession::install(AppcastItem item, Offer offer) {
    Task<> downloading = download(item, offer);
    co_await downloading;
    m_stage.show(Verifying{offer});
    Task<> checking = check(item);
    co_await checking;
    Task<Answer> asking = m_stage.ask(ReadyToInstall{offer});
    const Answer answer = co_await asking;
    if (answer != Answer::install)
        co_return;
    m_stage.show(Installing{offer});
    Task<> replacing = replace();
    co_await replacing;
}

Task<> UpdateSession::download(AppcastItem item, Offer offer) {
    showProgress(offer, 0);
    const auto prepare = [executable = m_context.executable] { return std::make_shared<Installation>(executable); };
    m_installation = co_await detached(prepare, updateWorker());
    FileRequest request{.url = item.url, .descriptor = m_installation->descriptor(), .length = item.length};
    request.progress = [this, offer](qint64 received) { showProgress(offer, received); };
    Task<> fetching = m_context.download.file(request);
    co_await fetching;
}

void UpdateSession::showProgress(const Offer& offer, qint64 received) {
    const qint64 steps = offer.length > 0 ? received * progressSteps / offer.length : 0;
    if (std::exchange(m_progressSteps, steps) != steps)
        m_stage.show(Downloading{offer, received}, [this](Answer) { giveUp(); });
}

Task<> UpdateSession::check(AppcastItem item) {
    const Expectation expected{item, m_context.key, m_context.properties.product, System::current().architecture};
    const auto check = [installation = m_installation, expected, stop = m_stop.get_token()] {
        const auto look = [&](int descriptor) { checkPayload(descriptor, expected, stop); };
        installation->check(expected.item.length, look);
        return true;
    };
    co_await detached(check, updateWorker());
}

Task<> UpdateSession::replace() {
    const auto install = [installation = m_installation] {
        installation->install();
        return true;
    };
    co_await detached(install, updateWorker());
    Task<bool> relaunching = m_context.relaunch(m_context.executable.path);
    const bool isUp = co_await relaunching;
    if (!isUp) {
        const auto rollBack = [installation = m_installation] {
            installation->rollBack();
            return true;
        };
        co_await detached(rollBack, updateWorker());
        throw UpdateFailure(UpdateFault::doesNotComeUp,
                            u"The new version did not start, so that the present one stays in its place."_s);
    }
    updateWorker().start([installation = m_installation] { installation->keep(); });
    Q_EMIT replaced();
    // What is shown stays until the program ends.
    std::suspend_always untilThen;
    co_await untilThen;
}

void UpdateSession::giveUp() {
    m_tasks.reset();
    m_stage.close();
    Q_EMIT ended();
}

/// On the worker, where the disk may take its time.
void UpdateSession::letGoOfFiles() {
    m_stop.request_stop();
    if (m_installation)
        updateWorker().start([installation = std::exchange(m_installation, nullptr)] {});
}

} // namespace torvane::Updates

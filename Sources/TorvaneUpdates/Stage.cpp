#include "TorvaneUpdates/Stage.h"

#include <QPointer>

#include <memory>
#include <utility>

namespace torvane::Updates {

namespace {

/// Where the answer arrives that somebody waits for.
struct Reply final {
    std::optional<Answer> answer;
    detail::TaskPromiseBase* waiting = nullptr;
};

/// Awaiting it resumes when the reply has come.
struct Replied final {
    Reply* reply;

    bool await_ready() const noexcept { return reply->answer.has_value(); }
    void await_suspend(detail::Suspended awaiting) const noexcept { reply->waiting = awaiting.task; }
    Answer await_resume() const { return *reply->answer; }
};

} // namespace

void Stage::show(const Scene& scene, std::function<void(Answer)> answered) {
    m_isOpen = true;
    if (m_kind != scene.index())
        ++m_conversation;
    m_kind = scene.index();
    const auto answer = [stage = QPointer<Stage>(this), conversation = m_conversation,
                         answered = std::move(answered)](Answer given) {
        if (!stage)
            return;
        // Queued: whoever answers stands in the code of a window, which may have to go.
        QMetaObject::invokeMethod(
            stage, [stage, conversation, answered, given] { stage->deliver(conversation, answered, given); },
            Qt::QueuedConnection);
    };
    m_windows.show(scene, answer);
}

void Stage::show(const Scene& scene) {
    show(scene, [](Answer) {});
}

void Stage::deliver(quint64 conversation, const std::function<void(Answer)>& answered, Answer answer) {
    if (conversation != m_conversation)
        return;
    ++m_conversation;
    m_kind.reset();
    answered(answer);
}

Task<Answer> Stage::ask(Scene scene) {
    auto reply = std::make_shared<Reply>();
    show(scene, [weak = std::weak_ptr(reply)](Answer answer) {
        const std::shared_ptr<Reply> waited = weak.lock();
        if (!waited)
            return; // Nobody waits any more.
        waited->answer = answer;
        if (waited->waiting)
            waited->waiting->run();
    });
    const Replied replied{reply.get()};
    const Answer answer = co_await replied;
    co_return answer;
}

void Stage::bringToFront() {
    if (m_isOpen)
        m_windows.bringToFront();
}

void Stage::close() {
    ++m_conversation;
    m_kind.reset();
    if (std::exchange(m_isOpen, false))
        m_windows.close();
}

} // namespace torvane::Updates

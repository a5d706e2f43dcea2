#include "TorvaneUpdates/Stage.h"

#include "Support/Later.h"

#include <QPointer>

#include <utility>

namespace torvane::Updates {

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
    const Later<Answer> reply;
    show(scene, [reply](Answer answer) { reply.set(answer); });
    const Answer answer = co_await reply;
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

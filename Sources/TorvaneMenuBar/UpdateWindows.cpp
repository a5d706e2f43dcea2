#include "UpdateWindows.h"

#include <utility>

namespace torvane {

UpdateWindows::~UpdateWindows() {
    delete m_window;
}

void UpdateWindows::show(Updates::Scene scene, std::function<void(Updates::Answer)> answer) {
    if (!m_scene || m_scene->index() != scene.index())
        ++m_sceneNumber;
    m_scene = std::move(scene);
    m_answer = std::move(answer);
    const UpdatePage page = pageOf(*m_scene);
    if (m_window && !m_window->isHidden())
        m_window->turnTo(page);
    else
        open(page);
}

void UpdateWindows::open(const UpdatePage& page) {
    delete m_window; // One that was closed a moment ago, and is to be discarded.
    m_window = new UpdateWindow(page);
    connect(m_window, &UpdateWindow::answered, this, &UpdateWindows::pass);
    m_window->appear();
}

/// Later: what follows may take the window away, and its click or key is not over yet. By then there may be another
/// scene, which nobody has answered.
void UpdateWindows::pass(Updates::Answer answer) {
    const auto tell = [this, answer, number = m_sceneNumber] {
        const auto listener = number == m_sceneNumber ? std::exchange(m_answer, nullptr) : nullptr;
        if (listener)
            listener(answer);
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void UpdateWindows::close() {
    ++m_sceneNumber;
    m_scene.reset();
    m_answer = nullptr;
    if (m_window)
        m_window->leave();
}

void UpdateWindows::bringToFront() {
    if (!m_scene)
        return;
    if (!m_window || m_window->isHidden())
        open(pageOf(*m_scene));
    m_window->bringToFront();
}

} // namespace torvane

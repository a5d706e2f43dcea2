#pragma once

#include "Support/Async.h"
#include "TorvaneUpdates/Windows.h"

#include <QObject>

#include <optional>

namespace torvane::Updates {

/// Shows scenes through the windows, and brings their answers to whoever waits. The windows close with it.
class Stage final : public QObject {
public:
    explicit Stage(Windows& windows)
        : m_windows(windows) {}
    ~Stage() override { close(); }

    /// Whether anything is shown.
    bool isOpen() const { return m_isOpen; }

    /// Shows a scene. Its answer, if there is one, comes from the loop, at most once and not after another kind of
    /// scene has taken its place.
    void show(const Scene& scene, std::function<void(Answer)> answered);

    /// Shows a scene that has nothing to answer.
    void show(const Scene& scene);

    /// Shows a scene and waits for its answer.
    Task<Answer> ask(Scene scene);

    void bringToFront();

    /// Takes away what is shown.
    void close();

private:
    void deliver(quint64 conversation, const std::function<void(Answer)>& answered, Answer answer);

    Windows& m_windows;
    bool m_isOpen = false;
    std::optional<std::size_t> m_kind; // Of the scene that is shown.
    quint64 m_conversation = 0;        // Goes on with each kind of scene, and with each answer.
};

} // namespace torvane::Updates

#pragma once

#include "Support/Async.h"

namespace torvane {

/// A value that one side sets and the other awaits. Copies are the same one.
///     const Later<bool> answer;
///     connect(..., [answer] { answer.set(true); });
///     const bool isYes = co_await answer;
/// One task awaits it, which may be gone before the value comes.
template <class T>
class Later final {
    struct State {
        std::optional<T> value;
        detail::TaskPromiseBase* waiting = nullptr;
    };

public:
    /// The first value counts. To be called from the loop: whoever waits goes on at once, within this call.
    void set(T value) const {
        if (m_state->value)
            return;
        m_state->value.emplace(std::move(value));
        const std::shared_ptr<State> kept = m_state; // What goes on may destroy this.
        if (kept->waiting)
            kept->waiting->run();
    }

    auto operator co_await() const noexcept {
        class Awaiter {
        public:
            explicit Awaiter(std::shared_ptr<State> state)
                : m_state(std::move(state)) {}

            Awaiter(const Awaiter&) = delete;
            Awaiter& operator=(const Awaiter&) = delete;

            ~Awaiter() { m_state->waiting = nullptr; }

            bool await_ready() const noexcept { return m_state->value.has_value(); }

            void await_suspend(detail::Suspended awaiting) const noexcept { m_state->waiting = awaiting.task; }

            T await_resume() const { return *m_state->value; }

        private:
            std::shared_ptr<State> m_state;
        };
        return Awaiter(m_state);
    }

private:
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace torvane

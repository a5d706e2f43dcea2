#pragma once

#include "Support/TaskPromise.h"

namespace torvane {

namespace detail {

class Both;

} // namespace detail

/// An asynchronous operation that owns its coroutine frame. It starts when it is awaited or started; destroying it
/// earlier destroys the frame and with it whatever the frame awaits: that is how an operation is cancelled.
/// An error thrown inside arrives, as it was thrown, where the task is awaited.
/// Code inside may destroy the owner of the outermost task and so its own: it then runs on to its next suspension,
/// without what its owner owned, and no further.
template <class T>
class [[nodiscard]] Task final {
public:
    using promise_type = detail::TaskPromise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle frame) noexcept
        : m_frame(frame) {}

    Task(Task&& other) noexcept
        : m_frame(std::exchange(other.m_frame, nullptr)) {}

    Task& operator=(Task&& other) noexcept {
        std::swap(m_frame, other.m_frame);
        return *this;
    }

    ~Task() {
        if (!m_frame)
            return;
        if (m_frame.promise().isRunning)
            m_frame.promise().isOrphaned = true;
        else
            m_frame.destroy();
    }

    void start() const { m_frame.promise().run(); }

    bool isDone() const noexcept { return m_frame.done(); }

    /// The outcome of a task that is done; throws what the task threw.
    T result() const { return m_frame.promise().take(); }

    auto operator co_await() const noexcept {
        struct Awaiter {
            Handle frame;

            bool await_ready() const noexcept { return false; }

            std::coroutine_handle<> await_suspend(detail::Suspended awaiting) const noexcept {
                frame.promise().caller = awaiting.task;
                return frame;
            }

            T await_resume() const { return frame.promise().take(); }
        };
        return Awaiter{m_frame};
    }

private:
    friend class detail::Both;

    /// Starts it as one of several tasks of a caller that is running.
    void startBeside(int& siblings, detail::TaskPromiseBase* caller) const {
        m_frame.promise().siblings = &siblings;
        m_frame.promise().caller = caller;
        m_frame.resume();
    }

    Handle m_frame;
};

template <class T>
Task<T> detail::TaskPromise<T>::get_return_object() noexcept {
    const auto own = std::coroutine_handle<TaskPromise>::from_promise(*this);
    frame = own;
    return Task<T>(own);
}

inline Task<void> detail::TaskPromise<void>::get_return_object() noexcept {
    const auto own = std::coroutine_handle<TaskPromise>::from_promise(*this);
    frame = own;
    return Task<void>(own);
}

} // namespace torvane

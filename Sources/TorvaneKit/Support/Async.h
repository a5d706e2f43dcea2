#pragma once

#include "Support/Task.h"
#include "Support/Worker.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

/// Awaiting on the main loop. g++ 12 destroys some temporaries inside a `co_await` expression twice, so `co_await`
/// takes only names and calls on names: no closures with captures, no aggregates, no coroutine lambdas with captures.
namespace torvane {

namespace detail {

/// Awaiting it runs two tasks side by side on behalf of the one that awaits.
class Both final {
public:
    Both(const Task<>& first, const Task<>& second)
        : m_first(first)
        , m_second(second) {}

    bool await_ready() const noexcept { return false; }

    bool await_suspend(Suspended awaiting) {
        m_first.startBeside(m_running, awaiting.task);
        m_second.startBeside(m_running, awaiting.task);
        return --m_running > 0; // Both may have ended already.
    }

    void await_resume() const noexcept {}

private:
    const Task<>& m_first;
    const Task<>& m_second;
    int m_running = 3; // The two, and whoever starts them.
};

} // namespace detail

/// Runs two tasks side by side and ends when both have ended. Throws what the first one threw, else what the second
/// did.
inline Task<> whenBoth(Task<> first, Task<> second) {
    detail::Both both(first, second);
    co_await both;
    first.result();
    second.result();
}

/// Runs tasks on behalf of its owner: destroying the scope cancels those that have not ended.
/// A task in a scope has nobody to throw to: it deals with its own failures.
class TaskScope final {
public:
    void run(Task<void> task) {
        std::erase_if(m_tasks, [](const Task<void>& earlier) { return earlier.isDone(); });
        m_tasks.push_back(std::move(task));
        m_tasks.back().start();
    }

private:
    std::vector<Task<void>> m_tasks;
};

/// Marks an operation as running, from before its first suspension to whichever way it ends.
class InFlight final {
public:
    explicit InFlight(bool& mark)
        : m_mark(mark) {
        m_mark = true;
    }

    InFlight(const InFlight&) = delete;
    InFlight& operator=(const InFlight&) = delete;

    ~InFlight() { m_mark = false; }

private:
    bool& m_mark;
};

namespace detail {

template <class T>
struct DetachedState {
    TaskPromiseBase* awaiting = nullptr; // Null once the awaiting frame is gone.
    std::optional<T> value;
    std::exception_ptr error;
};

inline std::atomic<unsigned> g_handedOver = 0;

/// What a queued call carries from a worker to the main loop. Qt's queue keeps the two in order, but by means that
/// ThreadSanitizer does not know. It knows the count, raised once the call holds its copy and read before that is.
template <class T>
class HandedOver final {
public:
    explicit HandedOver(std::shared_ptr<T> value)
        : m_value(std::move(value)) {}

    HandedOver(const HandedOver& other)
        : m_value(other.m_value) {
        g_handedOver.fetch_add(1, std::memory_order_release);
    }

    HandedOver& operator=(const HandedOver&) = delete;
    ~HandedOver() = default;

    T& taken() const {
        static_cast<void>(g_handedOver.load(std::memory_order_acquire));
        return *m_value;
    }

private:
    std::shared_ptr<T> m_value;
};

} // namespace detail

/// Runs a function on a worker's thread and resumes on the main thread with its result, or throws what it threw.
/// Use as `const auto work = [copies] {...}; const T result = co_await detached(work);` — the function must own
/// copies of all it reads, since the awaiting side may be gone before it ends.
template <class Function>
auto detached(const Function& function, Worker& on = worker()) {
    using T = std::decay_t<std::invoke_result_t<const Function&>>;
    using State = detail::DetachedState<T>;

    class Awaiter {
    public:
        Awaiter(Function work, Worker& on)
            : m_work(std::move(work))
            , m_worker(on) {}

        Awaiter(const Awaiter&) = delete;
        Awaiter& operator=(const Awaiter&) = delete;

        ~Awaiter() { m_state->awaiting = nullptr; }

        bool await_ready() const noexcept { return false; }

        void await_suspend(detail::Suspended awaiting) {
            m_state->awaiting = awaiting.task;
            m_worker.start([state = m_state, work = std::move(m_work)] {
                try {
                    state->value.emplace(work());
                } catch (...) {
                    state->error = std::current_exception();
                }
                // Queued: the frame resumes from the main loop, and a frame that is gone is not touched.
                QMetaObject::invokeMethod(
                    QCoreApplication::instance(),
                    [outcome = detail::HandedOver(state)] {
                        if (auto* frame = outcome.taken().awaiting)
                            frame->run();
                    },
                    Qt::QueuedConnection);
            });
        }

        T await_resume() const {
            if (m_state->error)
                std::rethrow_exception(m_state->error);
            return std::move(*m_state->value);
        }

    private:
        Function m_work;
        Worker& m_worker;
        std::shared_ptr<State> m_state = std::make_shared<State>();
    };

    return Awaiter(function, on);
}

} // namespace torvane
